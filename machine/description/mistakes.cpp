// All mistakes of a description at once.

#include <algorithm>
#include <set>

#include "machine/description/checks.h"
#include "machine/description/description.h"
#include "machine/description/parse.h"
#include "machine/description/positions.h"
#include "machine/description/types.h"

namespace machine {

namespace {

using description::Flaw;
using description::Source;

// "disks[0]" of "disks[0].partitions[1].offset".
std::string EntryOf(const std::string& place) {
    return place.substr(0, place.find_first_of("].") + 1);
}

// Values that contradict each other, as far as those that they are compared with are right.
std::vector<Flaw> Contradictions(const Pc& pc, const std::vector<Flaw>& known) {
    std::vector<Flaw> found = known;
    const std::string noFile;
    const Source source(noFile, found);
    source.TryAll([&] { description::CheckDescription(pc, source); });
    found.erase(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(known.size()));
    std::set<std::string> wrong;
    for (const Flaw& flaw : known)
        wrong.insert(EntryOf(flaw.place));
    std::erase_if(found, [&](const Flaw& flaw) { return wrong.contains(EntryOf(flaw.place)); });
    return found;
}

std::vector<Flaw> FindFlaws(const std::string& text) {
    std::vector<Flaw> flaws;
    const std::string noFile;
    Source source(noFile, flaws);
    source.TryAll([&] {
        const description::Json json = description::Parse(text, source);
        Pc pc;
        description::ReadPc(description::Node(json, source), pc);
        const std::vector<Flaw> contradictions = Contradictions(pc, flaws);
        flaws.insert(flaws.end(), contradictions.begin(), contradictions.end());
    });
    return flaws;
}

// Where it stands, or what it is missing in.
size_t OffsetOf(const std::unordered_map<std::string, size_t>& offsets, std::string place) {
    for (;; place = description::PlaceAbove(place)) {
        if (const auto found = offsets.find(place); found != offsets.end()) return found->second;
        if (place.empty()) return 0;
    }
}

}  // namespace

std::vector<Mistake> FindMistakes(const std::string& text) {
    const std::vector<Flaw> flaws = FindFlaws(text);
    std::set<std::string> places;
    for (const Flaw& flaw : flaws)
        places.insert(flaw.place);
    const auto offsets = description::OffsetsByPlace(text, places);
    std::vector<std::pair<size_t, const Flaw*>> inOrder;
    for (const Flaw& flaw : flaws)
        inOrder.emplace_back(flaw.offset.value_or(OffsetOf(offsets, flaw.place)), &flaw);
    std::ranges::stable_sort(inOrder, {}, &std::pair<size_t, const Flaw*>::first);
    const description::Lines lines(text);
    std::vector<Mistake> mistakes;
    for (const auto& [offset, flaw] : inOrder) {
        const auto [line, column] = lines.Of(offset);
        mistakes.push_back({line, column, flaw->place, flaw->what});
    }
    return mistakes;
}

}  // namespace machine
