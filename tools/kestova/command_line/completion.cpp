#include "tools/kestova/command_line/completion.h"

#include <algorithm>
#include <cctype>
#include <sstream>

#include "tools/kestova/command_line/command_line.h"
#include "tools/kestova/command_line/commands.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/operations/operations.h"
#include "tools/kestova/picture/columns.h"
#include "tools/kestova/reports/as_text.h"

namespace {

struct Shell {
    const char* name;
    const char* script;
};

// Each asks for the candidates of the words so far, one a line with its meaning behind a tab, and offers
// files where there are none.
constexpr Shell shells[] = {
    {"bash",
     R"sh(_kestova() {
    local candidates
    candidates=$("$1" completion words -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null | cut -f 1)
    mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$2")
}
complete -o bashdefault -o default -F _kestova kestova
)sh"},
    {"zsh",
     R"sh(#compdef kestova
_kestova() {
    local -a lines candidates
    local line tab=$'\t'
    lines=(${(f)"$(command $words[1] completion words -- "${(@)words[2,CURRENT]}" 2>/dev/null)"})
    for line in $lines; do
        candidates+=("${${line%%$tab*}//:/\\:}:${line#*$tab}")
    done
    if [[ -n $candidates ]]; then
        _describe kestova candidates
    else
        _files
    fi
}
compdef _kestova kestova
)sh"},
    {"fish",
     R"sh(function __kestova_candidates
    set --local words (commandline --tokenize --current-process --cut-at-cursor) (commandline --current-token --cut-at-cursor)
    set --local candidates (command $words[1] completion words -- $words[2..-1] 2>/dev/null)
    if set --query candidates[1]
        printf '%s\n' $candidates
    else
        __fish_complete_path (commandline --current-token)
    end
end
complete --command kestova --no-files --arguments '(__kestova_candidates)'
)sh"},
};

std::vector<std::string> Alternatives(const std::string& text) {
    std::vector<std::string> alternatives;
    std::istringstream stream(text);
    for (std::string word; std::getline(stream, word, '|');)
        alternatives.push_back(word);
    return alternatives;
}

// The plain words of "recovery|system" or "SCRIPT|-"; those in capitals are names for something else.
std::vector<Candidate> PlainWords(const std::string& text) {
    std::vector<Candidate> candidates;
    for (const std::string& word : Alternatives(text)) {
        const bool isName =
            std::any_of(word.begin(), word.end(), [](unsigned char unit) { return std::isupper(unit) != 0; });
        if (!isName) candidates.push_back({word, ""});
    }
    return candidates;
}

// What help writes in capitals.
std::vector<Candidate> Named(const std::string& name) {
    std::vector<Candidate> candidates;
    if (name == "OPERATION") {
        for (const Operation& operation : Operations())
            candidates.push_back({operation.name, operation.summary});
    } else if (name == "COMMAND") {
        for (const Command& command : Commands())
            candidates.push_back({command.name, command.summary});
    } else if (name == "SHELL") {
        for (const Shell& shell : shells)
            candidates.push_back({shell.name, ""});
    } else if (name == "NAME") {
        for (const machine::NamedMachine& machine : machine::NamedMachines())
            candidates.push_back({std::string(machine.name), std::string(machine.summary)});
    } else if (name.starts_with("NAME[#N]")) {
        for (const machine::CallInfo& call : machine::AllCalls())
            candidates.push_back({std::string(call.name), ""});
    }
    return candidates;
}

std::vector<Candidate> ValuesOf(const std::string& text) {
    std::vector<Candidate> candidates = PlainWords(text);
    for (const std::string& word : Alternatives(text)) {
        for (Candidate& candidate : Named(word))
            candidates.push_back(std::move(candidate));
    }
    return candidates;
}

// Of a list, what can follow its last comma, behind what is there.
std::vector<Candidate> ColumnLists(const std::string& list) {
    const std::string chosen = list.substr(0, list.rfind(',') + 1);
    const auto isChosen = [&](std::string_view name) {
        return ("," + chosen).find("," + std::string(name) + ",") != std::string::npos;
    };
    std::vector<Candidate> candidates;
    for (const Column& column : Columns()) {
        if (!isChosen(column.name))
            candidates.push_back({chosen + std::string(column.name), std::string(column.words)});
    }
    return candidates;
}

// What the value of an option can become; `value` is how help shows it.
std::vector<Candidate> OptionValues(const std::string& value, const std::string& last) {
    return value == "LIST" ? ColumnLists(last) : ValuesOf(value);
}

// The command's first argument; only some have more, and those are numbers and letters.
std::vector<Candidate> ArgumentsOf(const Command& command) {
    std::string first = command.arguments;
    first = first.substr(0, first.find(' '));
    if (first.starts_with('[')) first = first.substr(1, first.find(']') - 1);
    return ValuesOf(first);
}

const Command* CommandNamed(const std::string& name) {
    const auto& commands = Commands();
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const Command& command) { return command.name == name; });
    return found == commands.end() ? nullptr : &*found;
}

std::vector<Candidate> OptionsOf(const Command* command) {
    std::vector<Candidate> candidates;
    for (const OptionWords& option : KnownOptions()) {
        if (command == nullptr || Concerns(*command, option.name))
            candidates.push_back({option.name, option.words});
    }
    return candidates;
}

// The value that a word asks for, as help shows it; empty if it asks for none.
std::string ValueAfter(const std::string& word) {
    for (const OptionWords& option : KnownOptions()) {
        if (option.name == word) return option.value;
    }
    return "";
}

// Of "--format=m", each value behind the option that it is for.
std::vector<Candidate> WithOption(const std::string& option, const std::string& last) {
    std::vector<Candidate> candidates = OptionValues(ValueAfter(option), last.substr(option.size() + 1));
    for (Candidate& candidate : candidates)
        candidate.word.insert(0, option + "=");
    return candidates;
}

// A shell can make three words of "--format=m"; without the middle one, which is empty while the value is.
std::vector<std::string> WithoutEquals(const std::vector<std::string>& words) {
    std::vector<std::string> plain;
    for (const std::string& word : words) {
        const bool isBehindOption = word == "=" && !plain.empty() && !ValueAfter(plain.back()).empty();
        if (!isBehindOption) plain.push_back(word);
    }
    if (words.back() == "=" && plain.back() != "=") plain.emplace_back();
    return plain;
}

// The words that are neither options nor their values.
std::vector<std::string> Positional(const std::vector<std::string>& words) {
    std::vector<std::string> positional;
    for (size_t at = 0; at < words.size(); ++at) {
        if (!ValueAfter(words[at]).empty()) {
            ++at;
        } else if (!words[at].starts_with("-")) {
            positional.push_back(words[at]);
        }
    }
    return positional;
}

std::vector<Candidate> AllCandidates(const std::vector<std::string>& before, const std::string& last) {
    const std::string value = before.empty() ? "" : ValueAfter(before.back());
    if (!value.empty()) return OptionValues(value, last);
    const size_t equals = last.find('=');
    if (last.starts_with("--") && equals != std::string::npos)
        return WithOption(last.substr(0, equals), last);
    const std::vector<std::string> positional = Positional(before);
    const Command* const command = positional.empty() ? nullptr : CommandNamed(positional.front());
    if (last.starts_with("-")) return OptionsOf(command);
    if (positional.empty()) return Named("COMMAND");
    return command != nullptr && positional.size() == 1 ? ArgumentsOf(*command) : std::vector<Candidate>();
}

}  // namespace

std::string CompletionScript(const std::string& shell) {
    std::vector<std::string> names;
    for (const Shell& row : shells) {
        if (shell == row.name) return row.script;
        names.emplace_back(row.name);
    }
    throw WrongUse(UnknownWord("completion for", shell, names));
}

std::vector<Candidate> Complete(const std::vector<std::string>& words) {
    if (words.empty()) return {};
    const std::vector<std::string> plain = WithoutEquals(words);
    const std::string& last = plain.back();
    std::vector<Candidate> candidates = AllCandidates({plain.begin(), plain.end() - 1}, last);
    std::erase_if(candidates, [&](const Candidate& candidate) { return !candidate.word.starts_with(last); });
    return candidates;
}
