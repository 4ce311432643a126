// Compares two PCs by their descriptions, so that each fact that a description can hold is compared.

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "machine/description/description.h"
#include "machine/description/types.h"

namespace machine {

namespace {

using description::Json;

// A list of things that are known by a key of theirs, and what one is called.
struct Kind {
    std::string_view list;
    std::string_view word;
    const char* key;
    bool isOrdered;  // the order is a fact
};

constexpr Kind kinds[] = {{"packs", "pack", "name", true},
                          {"disks", "disk", "number", true},
                          {"partitions", "partition", "number", true},
                          {"volumes", "volume", "letters", false},
                          {"encryptableVolumes", "encryptable volume", "driveLetter", true}};

std::string TextOf(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Both sides of a place; null for what one does not have.
using Sides = std::pair<const Json*, const Json*>;

class Comparison {
  public:
    explicit Comparison(ListOrder order) : order_(order) {}

    void Values(const std::string& place, Sides sides) {
        const auto [left, right] = sides;
        if (left != nullptr && right != nullptr && *left == *right) return;
        if (AreBoth(sides, &Json::is_object)) {
            Objects(place, *left, *right);
        } else if (const Kind* const kind = KindOf(place);
                   kind != nullptr && AreBoth(sides, &Json::is_array)) {
            Lists(place.substr(0, place.size() - kind->list.size()), *kind, *left, *right);
        } else {
            const auto text = [](const Json* value) {
                return value != nullptr ? std::optional(TextOf(*value)) : std::nullopt;
            };
            found.push_back({place, text(left), text(right)});
        }
    }

    std::vector<Difference> found;

  private:
    const ListOrder order_;

    static bool AreBoth(Sides sides, bool (Json::*is)() const noexcept) {
        return sides.first != nullptr && sides.second != nullptr && (sides.first->*is)() &&
               (sides.second->*is)();
    }

    static const Kind* KindOf(const std::string& place) {
        const auto kind = std::ranges::find_if(kinds, [&](const Kind& row) {
            return place == row.list || place.ends_with(", " + std::string(row.list));
        });
        return kind != std::end(kinds) ? kind : nullptr;
    }

    void Objects(const std::string& place, const Json& left, const Json& right) {
        const std::string before = place.empty() ? "" : place + ", ";
        const auto side = [](const Json& object, const std::string& key) {
            return object.contains(key) ? &object.at(key) : nullptr;
        };
        for (const auto& [key, value] : left.items())
            Values(before + key, {&value, side(right, key)});
        for (const auto& [key, value] : right.items())
            if (!left.contains(key)) Values(before + key, {nullptr, &value});
    }

    // Each entry with the other of the same name.
    void Lists(const std::string& before, const Kind& kind, const Json& left, const Json& right) {
        const std::vector<std::string> leftNames = Names(kind, left);
        const std::vector<std::string> rightNames = Names(kind, right);
        const auto find = [](const Json& list, const std::vector<std::string>& names,
                             const std::string& name) -> const Json* {
            const auto at = std::ranges::find(names, name);
            return at != names.end() ? &list[static_cast<size_t>(at - names.begin())] : nullptr;
        };
        for (size_t i = 0; i < left.size(); ++i)
            Values(before + leftNames[i], {&left[i], find(right, rightNames, leftNames[i])});
        for (size_t i = 0; i < right.size(); ++i)
            if (find(left, leftNames, rightNames[i]) == nullptr)
                Values(before + rightNames[i], {nullptr, &right[i]});
        const bool isReordered =
            leftNames != rightNames && std::ranges::is_permutation(leftNames, rightNames);
        if (order_ == ListOrder::Compared && kind.isOrdered && isReordered)
            found.push_back(
                {before + std::string(kind.list) + ", order", TextOf(leftNames), TextOf(rightNames)});
    }

    // "disk 0"; "volume [1]" for one whose key does not tell it from the others.
    static std::vector<std::string> Names(const Kind& kind, const Json& list) {
        std::map<std::string, size_t> uses;
        for (const Json& entry : list)
            ++uses[KeyText(entry.at(kind.key))];
        std::vector<std::string> names;
        for (const Json& entry : list) {
            const std::string key = KeyText(entry.at(kind.key));
            const bool tells = !key.empty() && uses.at(key) == 1;
            names.push_back(std::string(kind.word) + " " +
                            (tells ? key : "[" + std::to_string(names.size()) + "]"));
        }
        return names;
    }

    static std::string KeyText(const Json& key) {
        if (key.is_null()) return "";
        return key.is_string() ? key.get<std::string>() : TextOf(key);
    }
};

Json Whole(const Pc& pc) {
    Json json;
    description::WritePc(description::Output(json, true), pc);
    return json;
}

}  // namespace

std::vector<Difference> Compare(const Pc& left, const Pc& right, ListOrder order) {
    const Json ofLeft = Whole(left);
    const Json ofRight = Whole(right);
    Comparison comparison(order);
    comparison.Values("", {&ofLeft, &ofRight});
    return comparison.found;
}

}  // namespace machine
