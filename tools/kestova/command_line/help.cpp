#include "tools/kestova/command_line/help.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "tools/kestova/common/text.h"
#include "tools/kestova/picture/columns.h"

namespace {

constexpr size_t columns = 80;

struct Example {
    const char* words;
    const char* meaning;
};

struct CommandHelp {
    std::string_view command;
    const char* details;  // paragraphs, with an empty line between them
    std::vector<Example> examples;
};

const std::vector<CommandHelp>& CommandHelps() {
    static const std::vector<CommandHelp> helps = {
        {"status",
         "Shows the firmware, the running system, the internal disk, which partition is active, the letters of "
         "recovery disc and stick, and the record; then every disk with its partitions, their roles and why they "
         "have them, in what condition their volumes are, and the free space. Nothing is changed.",
         {{"--image disk.img status", "the disk in an image"},
          {"--image disk.img --columns number,size,label status", "three columns"},
          {"--image disk.qcow2 --json status", "the same for a script"}}},
        {"letters",
         "Shows the disk and the partition behind each letter of the installed Windows, read from its registry, and "
         "the letter which that partition has in the running system.",
         {{"--image disk.img letters", "from Windows PE, as on a rescue stick"}}},
        {"files",
         "Lists a folder of a volume, or a file, as the library's questions find them. The volume is a letter of the "
         "running system (C:\\sources) or a partition of the internal disk (2, 2:\\sources), of another disk with "
         "its number in front (1.2:\\sources). A path that is not there ends with its first missing part, and "
         "status 1. Nothing is changed.",
         {{"--image disk.img files '1:\\sources'", "a folder of partition 1"},
          {"--image disk.img --hash files 'C:\\sources\\boot.wim'", "a file, with its SHA-256"}}},
        {"check",
         "Says whether this PC can boot its recovery partition and come back, before a switch: a line for each "
         "condition with yes or no, what was found, and what to do. On an image and a described PC it also tries "
         "both switches in memory. Nothing is changed. Ends with 0 if the switch is possible, else with 1.",
         {{"--image disk.img check", "the disk in an image"},
          {"--image disk.img --json check", "the same for a script"}}},
        {"report",
         "Makes one page of what `status` and `check` show, with every disk drawn to scale and the log of the session: to "
         "attach to a ticket, to print, or as Markdown for a chat. Nothing is changed, and the status is that of "
         "`status`.",
         {{"--image disk.img report -o report.html", "a page, whole in itself"},
          {"--image disk.img --format markdown report", "for a chat"}}},
        {"capture",
         "Asks everything that a description of a PC can hold, and writes it: disks, partitions and volumes with and "
         "without a letter, what WMI lists, what drivers answer, letters in the registry, and which of the files exist "
         "that the library looks for. Nothing is changed. A call that fails is described as failing. Of an image it "
         "makes a description that needs the image no more. What the description holds is said before you send it to "
         "anybody; --anonymous puts stand-ins for what tells whose PC it is. Only --with-installed-registry writes: "
         "Windows brings the logs of a hive into it when it is mounted.",
         {{"capture -o pc.json", "on Windows: this PC"},
          {"--image disk.img --anonymous capture -o pc.json", "the disk in an image"},
          {"--pc pc.json status", "and look at it anywhere"}}},
        {"boot",
         "Makes the recovery partition active and records the one that was active before (recovery), or makes the "
         "recorded one active again (system). For MBR disks.\n\n"
         "On an image the change is made as a whole or not at all, and its backup stays beside the image.",
         {{"--image disk.img --dry-run boot recovery", "what would change"},
          {"--image disk.img boot recovery", "change it"},
          {"undo disk.img.kestova-backup-1", "and take that back"}}},
        {"call",
         "Calls one public operation of the class, with its arguments. `kestova operations` lists them.",
         {{"--image disk.img call GetDriveLetter 0 2", "the letter of partition 2 on disk 0"}}},
        {"run",
         "Calls the operations of a script, one on each line, on one object; # begins a comment. Each operation's "
         "changes of an image are written before the next one begins.",
         {{"--image disk.img run script.txt", "a file"}, {"--pc factory-mbr run -", "standard input"}}},
        {"replay",
         "Runs the operations of a recording again; the recording answers in place of the PC, strictly in its order. "
         "With operations only these are run, from where each of them is recorded; one in quotes has its arguments. "
         "Exit status 1: the library asks, "
         "logs or answers something else than it did; the message names the line.",
         {{"--pc factory-mbr --record calls.jsonl boot recovery", "make one"},
          {"replay calls.jsonl", "and run it again"},
          {"replay calls.jsonl \"GetDriveLetter 0 2\"", "only the call with these arguments"}}},
        {"recover",
         "Finishes or takes back a change of an image that a power cut or a failing medium has interrupted. Every "
         "command that changes the image does so first.",
         {{"--image disk.img recover", ""}}},
        {"undo",
         "Takes back what a command changed on an image, with the backup that it left. The image is the one that the "
         "backup is named after, unless --image names another. Refused if something else has changed the image "
         "since.",
         {{"undo disk.img.kestova-backup-1", ""},
          {"--image disk.img undo FILE", "a backup of another name"}}},
        {"repair-table",
         "Writes both copies of a damaged GUID partition table anew from the good one, and its protective MBR.",
         {{"--image disk.img --dry-run repair-table", "what is wrong"},
          {"--image disk.img repair-table", "repair it"}}},
        {"survey",
         "Runs a script of operations on many PCs: descriptions and disk images, named or in folders. Writes an object a "
         "line, in the order of the PCs, and shows on standard error what came out how often. Images are not changed "
         "unless --write is given. Each PC has a process of its own; one that crashes or takes too long is a line with "
         "the key error, and status 1. On Linux only.",
         {{"survey lab --script s.txt >lab.jsonl", "all in a folder"},
          {"survey lab --script s.txt -o lab.jsonl --resume", "after an interruption"},
          {"survey lab --script s.txt --against lab.jsonl", "what differs now"},
          {"survey lab --script s.txt --shard 2/8", "an eighth of it"}}},
        {"validate",
         "Names everything that is wrong in files that describe a PC: file, line, column, place. Opens no image that "
         "they name. Values that contradict each other are named where each of them is right by itself.",
         {{"validate pc.json", ""}, {"validate *.json", "several, in one run"}}},
        {"compare",
         "Says in which facts two PCs differ: machines that come with the tool, or descriptions. Their order in "
         "lists is not compared, and of an image that a description names only the path is. With --seen only what a "
         "running system can show is compared, as `capture` finds it, with the order of its lists: no switches, faults "
         "or contents of files other than INI files. Exit status 1: they differ.",
         {{"compare factory-mbr pc.json", ""}, {"compare --seen factory-mbr captured.json", ""}}},
        {"generate",
         "Makes random PCs, of which every one is valid: most are the machines that come with the tool with something "
         "changed, some are wild. A seed has the same PCs everywhere, and PC 7 of it is the same whatever others are "
         "made. One PC is shown as a description, several as one description a line; --output writes each into a file "
         "of the folder: pc-000001.json, and so on.",
         {{"generate --seed 7 >pc.json", "the first PC of seed 7"},
          {"generate --count 1000 --output lab", "a thousand files"},
          {"generate --first 501 --count 500 --output lab", "the second half of them"}}},
        {"conform",
         "Asks two PCs the same and says where their answers differ: every operation that changes nothing, and every "
         "published call with arguments that the library uses and some that it does not. The first is the PC of the "
         "options, on Windows the one that the program runs on. The other is emulated: a machine that comes with the "
         "tool, a description, or without an argument a capture of the first. Beside each call stand the operations that "
         "make it with these arguments. Nothing is changed, except with --changes. Exit status 1: they differ.\n\n"
         "--changes DISK also tries calls that change that disk, on both PCs: active flags, letters, a partition's type. It "
         "answers what the documents leave open, and puts everything back; what could not be put back is said. A user "
         "at a terminal is asked first. Attach a virtual disk for it, with two or three small MBR partitions, the last "
         "of them not formatted: the disk of the running Windows and the first internal one are refused.\n\n"
         "Differences that are known can be listed in a file, a line each: a call or an operation, its arguments and "
         "the reason, with a tab between them; a * stands for any text.",
         {{"conform", "what the emulated PC does otherwise than this one"},
          {"--pc factory-mbr conform pc.json", ""},
          {"-o differences.html conform", "a page to read and to send"},
          {"--changes 2 conform", "the calls that change a disk too, tried on disk 2"},
          {"--pc pc.json --expect known.tsv conform", "only what is not known"}}},
        {"operations", "Lists every public operation with its arguments and results.", {{"operations", ""}}},
        {"pcs", "Lists the machines that come with the tool, for --pc.", {{"pcs", ""}}},
        {"calls",
         "Lists the platform calls that --fail knows, and how each reports a failure.",
         {{"calls", ""}}},
        {"completion",
         "Prints a script for bash, zsh or fish that makes the shell complete commands, operations, options and their "
         "values. With `words`, prints what the last of the words behind -- can become; that is what the scripts ask.",
         {{"completion bash >/etc/bash_completion.d/kestova", "for everybody"},
          {"completion fish | source", "in this shell"},
          {"completion words -- boot r", ""}}},
        {"help", "Shows the help of the program, or of one command.", {{"help boot", ""}}},
    };
    return helps;
}

const CommandHelp& HelpOf(const Command& command) {
    const auto& helps = CommandHelps();
    return *std::find_if(helps.begin(), helps.end(),
                         [&](const CommandHelp& help) { return help.command == command.name; });
}

std::string ExampleLines(const CommandHelp& help) {
    std::vector<std::vector<std::string>> rows;
    for (const Example& example : help.examples)
        rows.push_back({std::string("kestova ") + example.words, example.meaning});
    return Table(rows, "  ", columns);
}

std::string UsageLine(const Command& command) {
    const std::string arguments = *command.arguments != '\0' ? std::string(" ") + command.arguments : "";
    return std::string("Usage: kestova ") + (command.usesPc ? "[PC] " : "") + command.name + arguments + "\n";
}

}  // namespace

std::string HelpText() {
    std::vector<std::vector<std::string>> rows;
    for (const Command& command : Commands())
        rows.push_back({command.name + std::string(" ") + command.arguments, command.summary});
    return "Usage: kestova [PC] COMMAND\n\nCommands:\n" + Table(rows, "  ", columns) +
           "\nkestova help COMMAND explains one of them.\n" +
           OptionsText(columns, [](const std::string&) { return true; }) + "\nExit status:\n" +
           Table({{"0", "done"},
                  {"1", "the operation reports a failure, or what was asked could not be done"},
                  {"2", "wrong use: a message on standard error, nothing on standard output"},
                  {"3", "the PC cannot be read: a message on standard error, nothing on standard output"}},
                 "  ", columns) +
           "  Of boot, the result code:\n" + BootStatuses(columns);
}

std::string HelpText(const Command& command) {
    const CommandHelp& help = HelpOf(command);
    return UsageLine(command) + "\n" + Wrapped(help.details, columns) + "\nExamples:\n" + ExampleLines(help) +
           OptionsText(columns, [&](const std::string& option) { return Concerns(command, option); }) +
           (std::string_view(command.name) == "status" ? "\nColumns:\n" + ColumnsHelp(columns) : "") +
           (std::string_view(command.name) == "boot" ? "\nExit status:\n" + BootStatuses(columns) : "");
}
