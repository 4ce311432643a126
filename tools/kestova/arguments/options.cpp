// The only source that includes CLI11, which takes seconds to compile.

#include "tools/kestova/arguments/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"

namespace {

CLI::Option* Add(CLI::App& app, const Option& row, bool* flag) {
    return app.add_flag(row.names, *flag);
}

CLI::Option* Add(CLI::App& app, const Option& row, std::string* value) {
    return app.add_option(row.names, *value);
}

CLI::Option* Add(CLI::App& app, const Option& row, std::vector<std::string>* values) {
    return app.add_option(row.names, *values)->allow_extra_args(false);
}

// Whether a word can be that option, or holds it among letters behind one hyphen.
bool CanBeGiven(const Option& row, const std::vector<std::string>& words) {
    const std::string name = LongName(row);
    const bool hasLetter = std::string_view(row.names).find(',') != std::string_view::npos;
    return std::ranges::any_of(words, [&](const std::string& word) {
        return word.starts_with(name) || (hasLetter && word.starts_with('-') && !word.starts_with("--"));
    });
}

// Those that can be given: CLI11 takes longer to learn an option than to read the words.
void AddOptions(CLI::App& app, const std::vector<OptionGroup>& groups,
                const std::vector<std::string>& words) {
    for (const OptionGroup& group : groups) {
        for (const Option& row : group.options) {
            if (!CanBeGiven(row, words)) continue;
            CLI::Option* const option =
                std::visit([&](auto* target) { return Add(app, row, target); }, row.target);
            CLI::Option* const excluded =
                row.excludes != nullptr ? app.get_option_no_throw(row.excludes) : nullptr;
            if (excluded != nullptr) option->excludes(excluded);
        }
    }
}

std::string Message(const CLI::ParseError& error) {
    std::string text = error.what();
    constexpr std::string_view excludes = " excludes ";
    if (const size_t at = text.find(excludes);
        at != std::string::npos && error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExcludesError)) {
        return text.replace(at, excludes.size(), " and ") + " cannot be given together";
    }
    if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::ArgumentMismatch)) return text;
    const bool missing = text.find("missing") != std::string::npos;
    return text.substr(0, text.find(':')) + (missing ? " needs a value" : " can be given only once");
}

enum class Which { All, WithoutRisk };

std::vector<std::string> Names(const std::vector<OptionGroup>& groups, Which which) {
    std::vector<std::string> names;
    for (const OptionGroup& group : groups) {
        for (const Option& row : group.options) {
            if (which == Which::All || !row.isRisky) names.push_back(LongName(row));
        }
    }
    return names;
}

std::vector<std::string> NamesWithValue(const std::vector<OptionGroup>& groups) {
    std::vector<std::string> names;
    for (const OptionGroup& group : groups) {
        for (const Option& row : group.options) {
            if (*row.value != '\0') names.push_back(LongName(row));
        }
    }
    return names;
}

// CLI11 takes the next word for the value of "--image=".
void CheckHaveValues(const std::vector<OptionGroup>& groups, const std::vector<std::string>& words) {
    const std::vector<std::string> names = NamesWithValue(groups);
    const auto takesValue = [&](const std::string& name) { return std::ranges::count(names, name) != 0; };
    for (size_t at = 0; at < words.size() && words[at] != "--"; ++at) {
        const std::string name = words[at].substr(0, words[at].find('='));
        if (words[at] == name + "=" && takesValue(name)) throw WrongUse(name + "= needs a value");
        if (takesValue(words[at])) ++at;  // the next word is the value
    }
}

std::vector<std::string> GivenOptions(const CLI::App& app, const std::vector<std::string>& names) {
    std::vector<std::string> given;
    for (const std::string& name : names) {
        const CLI::Option* const option = app.get_option_no_throw(name);
        if (option == nullptr || option->count() == 0) continue;
        given.push_back(name);
        for (const std::string& value : option->results()) {
            if (value.empty()) throw WrongUse(name + ": the value is empty");
        }
    }
    return given;
}

}  // namespace

std::string LongName(const Option& option) {
    const std::string names = option.names;
    const size_t begin = names.find("--");
    return names.substr(begin, names.find(',') - begin);
}

uint64_t ReadNumber(const char* option, const std::string& value, uint64_t least, uint64_t most) {
    const char* const end = value.data() + value.size();
    uint64_t number = 0;
    const auto [rest, error] = std::from_chars(value.data(), end, number);
    if (error != std::errc() || rest != end || number < least || number > most) {
        throw WrongUse(std::string(option) + ": '" + Printable(value) + "' is no number from " +
                       std::to_string(least) + " to " + std::to_string(most));
    }
    return number;
}

ReadWords ReadOptions(const std::vector<OptionGroup>& groups, const std::vector<std::string>& words) {
    CheckHaveValues(groups, words);
    ReadWords read;
    CLI::App app;
    app.set_help_flag();
    app.allow_windows_style_options(false);
    app.allow_extras();
    AddOptions(app, groups, words);
    app.add_option("command", read.positional);
    try {
        app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::ParseError& error) {
        throw WrongUse(Message(error));
    }
    for (const std::string& unknown : app.remaining(true)) {
        if (unknown == "--") continue;  // what follows it is no option
        throw WrongUse(
            UnknownWord("option", unknown.substr(0, unknown.find('=')), Names(groups, Which::WithoutRisk)));
    }
    read.options = GivenOptions(app, Names(groups, Which::All));
    return read;
}
