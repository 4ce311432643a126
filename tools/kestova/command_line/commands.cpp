#include "tools/kestova/command_line/commands.h"

#include <algorithm>
#include <filesystem>
#include <span>

#include "tools/kestova/command_line/command_functions.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/json/output_keys.h"

namespace {

using namespace commands;

struct OptionUser {
    std::string_view option;
    int (*command)(const CommandLine& line);
};

constexpr OptionUser usedByFew[] = {
    {"--output", Report},     {"--output", Generate},   {"--output", Survey},
    {"--script", Survey},     {"--from", Survey},       {"--jobs", Survey},
    {"--time-limit", Survey}, {"--shard", Survey},      {"--against", Survey},
    {"--resume", Survey},     {"--write", Survey},      {"--seed", Generate},
    {"--first", Generate},    {"--count", Generate},    {"--format", Report},
    {"--hash", Files},        {"--bytes", Status},      {"--columns", Status},
    {"--output", Capture},    {"--anonymous", Capture}, {"--with-installed-registry", Capture},
    {"--seen", Compare},      {"--expect", Conform},    {"--changes", Conform},
    {"--output", Conform},    {"--format", Conform}};

// Besides the commands that work on a PC.
constexpr OptionUser alsoUsedBy[] = {
    {"--overwrite", Generate}, {"--overwrite", Survey},   {"--quiet", Survey}, {"--windows", Survey},
    {"--pe", Survey},          {"--force-dirty", Survey}, {"--fail", Survey},  {"--no-initialize", Survey},
    {"--no-journal", Survey},  {"--no-backup", Survey},   {"--yes", Survey},   {"--sector-size", Survey},
    {"--log", Replay},         {"--overwrite", Replay},   {"--quiet", Replay}};

constexpr OptionUser notUsedBy[] = {
    {"--json", Report},           {"--json", Generate},       {"--dry-run", Check},   {"--dry-run", Report},
    {"--ledger", Recover},        {"--ledger", RepairTables}, {"--ledger", Undo},     {"--ledger", Report},
    {"--json", Capture},          {"--dry-run", Capture},     {"--ledger", Capture},  {"--record", Capture},
    {"--record", Recover},        {"--record", RepairTables}, {"--record", Undo},     {"--ledger", Conform},
    {"--fail", Conform},          {"--save", Conform},        {"--dry-run", Conform}, {"--log", Conform},
    {"--no-initialize", Conform}, {"--record", Conform}};

constexpr std::string_view forChanges[] = {"--no-journal", "--backup", "--no-backup", "--yes",
                                           "--force-dirty"};

constexpr OptionUser rehearsedBy[] = {
    {"--force-dirty", Check}, {"--force-dirty", Report}, {"--yes", Conform}};

bool IsIn(std::span<const OptionUser> table, const Command& command, const std::string& option) {
    return std::ranges::any_of(
        table, [&](const OptionUser& row) { return row.option == option && row.command == command.run; });
}

// Whether the first word is a file, so that the option before it was forgotten.
bool IsFile(const std::string& word) {
    std::error_code error;
    return std::filesystem::is_regular_file(word, error) || std::filesystem::is_block_file(word, error);
}

}  // namespace

bool Uses(const Command& command, const std::string& option) {
    if (option == "--help" || option == "--version") return true;
    if (option == "--schema") return FindOutput(command.name) != nullptr;
    if (command.run == Help || command.run == Completion) return false;
    if (IsIn(notUsedBy, command, option)) return false;
    if (std::ranges::count(usedByFew, option, &OptionUser::option) != 0)
        return IsIn(usedByFew, command, option);
    if (option == "--json") return true;
    if (IsIn(alsoUsedBy, command, option)) return true;
    return command.usesPc && (command.traces || option != "--trace");
}

bool Concerns(const Command& command, const std::string& option) {
    if (!Uses(command, option)) return false;
    const auto questions = {Status, Letters, Files, Check, Report, Capture, Conform};
    const bool asks = std::ranges::count(questions, command.run) != 0;
    return !asks || std::ranges::count(forChanges, option) == 0 || IsIn(rehearsedBy, command, option);
}

const std::vector<Command>& Commands() {
    constexpr size_t any = 1000000;
    static const std::vector<Command> commands = {
        {"status", "", "What this PC is", 0, 0, true, false, Status},
        {"letters", "", "What each letter of the installed Windows stands for", 0, 0, true, false, Letters},
        {"files", "VOLUME[:\\PATH]", "What is in a folder of a volume, named by letter or partition", 1, 1,
         true, false, Files},
        {"check", "", "Whether this PC can boot its recovery partition and come back", 0, 0, true, false,
         Check},
        {"report", "", "All of that and the log as a page to attach to a ticket", 0, 0, true, false, Report},
        {"capture", "", "This PC as a description, to look at elsewhere", 0, 0, true, false, Capture},
        {"boot", "recovery|system", "Choose what it boots", 1, 1, true, true, Boot},
        {"call", "OPERATION [ARG...]", "Any public operation of the class, by its own name", 1, any, true,
         true, Call},
        {"run", "SCRIPT|-", "One operation a line, on one object", 1, 1, true, true, Run},
        {"replay", "FILE [OPERATION...]", "Run the library again on what --record has recorded", 1, any,
         false, false, Replay},
        {"recover", "", "Finish or take back a change of an image that was interrupted", 0, 0, true, false,
         Recover},
        {"undo", "BACKUP", "Take back what was changed on an image", 1, 1, true, false, Undo},
        {"repair-table", "", "Write a damaged GUID partition table anew from its good copy", 0, 0, true,
         false, RepairTables},
        {"survey", "FOLDER|FILE...", "A script of operations on many PCs, each in a process of its own", 0,
         any, false, false, Survey},
        {"validate", "FILE...", "All mistakes in descriptions of PCs", 1, any, false, false, Validate},
        {"compare", "PC PC", "Where two described PCs differ", 2, 2, false, false, Compare},
        {"generate", "", "Random PCs, as descriptions", 0, 0, false, false, Generate},
        {"conform", "[PC]", "Where this PC answers otherwise than an emulated one", 0, 1, true, false,
         Conform},
        {"operations", "", "Every public operation with its arguments and results", 0, 0, false, false,
         ListOperations},
        {"pcs", "", "The machines that come with the tool", 0, 0, false, false, ListPcs},
        {"calls", "", "The platform calls that --fail knows", 0, 0, false, false, ListCalls},
        {"completion", "SHELL", "What makes a shell complete command lines", 1, any, false, false,
         Completion},
        {"help", "[COMMAND]", "This, or what a command does", 0, 1, false, false, Help},
    };
    return commands;
}

bool ReadsHives(const CommandLine& line) {
    const auto command = std::ranges::find(Commands(), line.command, &Command::name);
    if (command == Commands().end()) return false;
    // The only operation that does.
    if (command->run == Call)
        return !line.arguments.empty() && line.arguments.front() == "GetWinDriveLetters";
    if (command->run == Capture) return line.installedRegistry;
    return command->run == Letters || command->run == Run;
}

bool StartsProcesses(const CommandLine& line) {
    const auto command = std::ranges::find(Commands(), line.command, &Command::name);
    return command != Commands().end() && command->run == Survey;
}

const Command& CommandOfName(const std::string& name) {
    if (name.empty()) throw WrongUse("no command was given");
    std::vector<std::string> names;
    for (const Command& command : Commands()) {
        if (name == command.name) return command;
        // Those that write to images by themselves are not suggested.
        if (command.run != Recover && command.run != RepairTables && command.run != Undo)
            names.emplace_back(command.name);
    }
    if (IsFile(name)) throw WrongUse("there is no command '" + name + "'; an image is named with --image");
    throw WrongUse(UnknownWord("command", name, names));
}

const Command& FindCommand(const CommandLine& line) {
    const Command& command = CommandOfName(line.command);
    const size_t count = line.arguments.size();
    if (count < command.fewest || count > command.most) {
        const std::string arguments = *command.arguments != '\0' ? " " : "";
        throw WrongUse("usage: kestova [PC] " + line.command + arguments + command.arguments);
    }
    for (const std::string& option : line.options) {
        if (!Uses(command, option)) throw WrongUse(line.command + " does not use " + option);
    }
    return command;
}
