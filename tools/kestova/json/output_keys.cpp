#include "tools/kestova/json/output_keys.h"

#include <algorithm>

namespace {

constexpr OutputKey statusKeys[] = {
    {"firmware", "string", "BIOS or UEFI"},
    {"system", "string", "that is running: Windows, Windows PE, or unknown"},
    {"windowsDirectory", "string|null", "of the running system"},
    {"internalDisk", "integer|null", "number of the first internal disk"},
    {"style", "string|null", "of its table: MBR, GPT, or unknown"},
    {"activePartition", "integer|null", "its number"},
    {"partitions[].number", "integer", "as Windows counts"},
    {"partitions[].offset", "integer", "in bytes"},
    {"partitions[].size", "integer", "in bytes"},
    {"partitions[].type", "string", "MBR ID or GUID"},
    {"partitions[].typeName", "string", "the type in words"},
    {"partitions[].active", "boolean", "whether it has the active flag"},
    {"partitions[].letter", "string|null", "in the running system"},
    {"partitions[].label", "string|null", "of a volume with a letter"},
    {"partitions[].fileSystem", "string|null", "of a volume with a letter"},
    {"partitions[].hide", "boolean", "whether it is not for the user's eyes"},
    {"partitions[].roles[].role", "string", "its purpose"},
    {"partitions[].roles[].reason", "string", "how that was recognised"},
    {"layout", "integer", "number of the layout"},
    {"layoutName", "string", "the layout in words"},
    {"encryptedVolumes", "string|null", "their letters; null if BitLocker cannot be asked"},
    {"recoveryDisc", "string|null", "its letter"},
    {"recoveryStick", "string|null", "its letter"},
    {"cachePartition", "boolean", "whether the second internal disk has one"},
    {"windows.disk", "integer", "of the installed Windows"},
    {"windows.partition", "integer", "of the installed Windows"},
    {"windows.letter", "string", "of the installed Windows, in the running system"},
    {"disks[].number", "integer", "as Windows counts"},
    {"disks[].bus", "string|null", "SATA, USB, ..."},
    {"disks[].model", "string|null", "of the device"},
    {"disks[].serial", "string|null", "of the device"},
    {"disks[].size", "integer|null", "in bytes"},
    {"disks[].sectorSize", "integer|null", "in bytes"},
    {"disks[].style", "string|null", "MBR, GPT or none"},
    {"disks[].isInternal", "boolean|null", "by its bus, as the service counts"},
    {"disks[].reason", "string", "why it is internal, or not"},
    {"disks[].partitions[].number", "integer", "as Windows counts"},
    {"disks[].partitions[].offset", "integer", "in bytes"},
    {"disks[].partitions[].size", "integer", "in bytes"},
    {"disks[].partitions[].type", "string", "MBR ID or GUID"},
    {"disks[].partitions[].typeName", "string", "the type in words"},
    {"disks[].partitions[].active", "boolean", "whether it has the active flag"},
    {"disks[].partitions[].letter", "string|null", "in the running system"},
    {"disks[].partitions[].label", "string|null", "of its volume, also without a letter"},
    {"disks[].partitions[].fileSystem", "string|null", "of its volume, also without a letter"},
    {"disks[].partitions[].hide", "boolean", "whether it is not for the user's eyes"},
    {"disks[].partitions[].roles[].role", "string", "its purpose"},
    {"disks[].partitions[].roles[].reason", "string", "how that was recognised"},
    {"disks[].partitions[].slot", "integer|null", "in the table of an image"},
    {"disks[].partitions[].name", "string|null", "in a GPT"},
    {"disks[].partitions[].hidden", "boolean", "by its MBR type or its GPT attribute"},
    {"disks[].partitions[].condition", "string|null", "of its volume"},
    {"disks[].gaps[].offset", "integer", "of space that is no partition's, in bytes"},
    {"disks[].gaps[].size", "integer", "in bytes"},
    {"record.partition", "integer", "that holds the record, or would"},
    {"record.exists", "boolean", "whether there is one"},
    {"record.recorded", "integer|null", "the partition that it names"},
    {"record.bootSystem", "integer|null", "the partition that `boot system` makes active"},
    {"record.words", "string", "the same in words"},
};

constexpr OutputKey remarkKey[] = {
    {"remark?", "string", "the remark of two active flags, or of missing letters"},
};

constexpr OutputKey problemKey[] = {
    {"problem?", "string", "what could not be read or answered"},
};

constexpr OutputKey remarksKeys[] = {
    {"remarks?[].code", "string", "which remark it is"},
    {"remarks?[].text", "string", "the remark in words"},
};

// With --fail and --ledger.
constexpr OutputKey endKeys[] = {
    {"faultsMet?[].fault", "string", "as --fail gave it"},
    {"faultsMet?[].met", "integer", "how many calls failed for it"},
    {"ledger?", "object", "how many of each kind the library holds in the end"},
};

constexpr OutputKey lettersKeys[] = {
    {"letters[].letter", "string", "of the installed Windows"},
    {"letters[].disk", "integer|null", "behind it"},
    {"letters[].partition", "integer|null", "behind it"},
    {"letters[].here", "string|null", "its letter in the running system"},
};

constexpr OutputKey filesKeys[] = {
    {"path", "string", "below the root of the volume"},
    {"kind", "string", "folder or file"},
    {"disk", "integer|null", "null for a disc or a stick"},
    {"partition", "integer|null", "null for a disc or a stick"},
    {"letter", "string|null", "of the volume"},
    {"entries[].name", "string", "of a file or a folder"},
    {"entries[].kind", "string", "folder or file"},
    {"entries[].bytes", "integer|null", "length of a file"},
    {"entries[].sha256?", "string|null", "with --hash"},
};

constexpr OutputKey checkKeys[] = {
    {"possible", "boolean", "whether the switch is"},
    {"conditions[].code", "string", "which condition it is"},
    {"conditions[].question", "string", "the condition in words"},
    {"conditions[].met", "boolean|null", "null: not looked at"},
    {"conditions[].found", "string", "what was found"},
    {"conditions[].advice", "string|null", "what to do"},
};

constexpr OutputKey operationKeys[] = {
    {"operation", "string", "its name"},
    {"arguments", "object", "by name"},
    {"result", "integer|string|null", "a letter is a text of one character"},
    {"outputs", "object", "by name"},
    {"log[].level", "integer", "of a record"},
    {"log[].text", "string", "of a record"},
    {"trace?[].level?", "integer", "of a record"},
    {"trace?[].text?", "string", "of a record"},
    {"trace?[].call?", "string", "a platform call"},
    {"trace?[].arguments?", "array", "of the call"},
    {"trace?[].result?", "string", "of the call"},
    {"trace?[].injected?", "boolean", "whether a fault produced the result"},
    {"backups?", "array", "with which `undo` takes the changes back"},
    {"written?", "boolean", "false: the change is not on the disk image"},
};

constexpr OutputKey afterProblemKeys[] = {
    {"reasons?[].code", "string", "the condition that is not met"},
    {"reasons?[].text", "string", "the same in words"},
    {"outcome?", "string", "which of two outcomes with this result it was"},
    {"changes?", "array", "of the PC, in words"},
};

constexpr OutputKey stopKey[] = {
    {"stoppedBefore?", "string",
     "the change before which a dry run of this PC stopped; there is no result then"},
};

constexpr OutputKey recoverKeys[] = {
    {"image", "string", "as it was named"},
    {"change", "string|null", "finished or takenBack; null: there was none"},
    {"recovered?", "boolean", "false with --dry-run"},
};

constexpr OutputKey repairTableKeys[] = {
    {"image", "string", "as it was named"},
    {"problems", "array", "in words"},
    {"repaired", "boolean", "whether the table was written"},
};

constexpr OutputKey undoKeys[] = {
    {"image", "string", "as it was named"},
    {"file", "string", "the backup"},
    {"undone", "boolean", "whether the change was taken back"},
};

constexpr OutputKey backupsKey[] = {
    {"backups?", "array", "with which `undo` takes this change back"},
};

constexpr OutputKey operationsKeys[] = {
    {"operation", "string", "its name"},
    {"summary", "string", "what it does"},
    {"parameters[].name", "string", "of the parameter"},
    {"parameters[].kind", "string", "flag, number, letter, text or list"},
    {"parameters[].direction", "string", "in or out"},
    {"parameters[].words", "string", "what it is"},
    {"parameters[].values[].value", "integer|string|boolean", "that has a meaning"},
    {"parameters[].values[].words", "string", "its meaning"},
    {"parameters[].values[].failure", "boolean", "whether it is a failure"},
    {"parameters[].values[].name", "string", "by which programs call it"},
    {"parameters[].default?", "integer|string|boolean", "when it is left out"},
    {"results[].value", "integer|string|boolean", "that has a meaning"},
    {"results[].words", "string", "its meaning"},
    {"results[].failure", "boolean", "whether it is a failure"},
    {"results[].name", "string", "by which programs call it"},
    {"results[].advice", "string", "after a failure: retry, give-up, undo or go-on; else empty"},
    {"results[].remedy", "string", "what the advice leaves open, if it does"},
    {"otherwise", "string", "any other result in words"},
    {"changesPc", "boolean", "whether it can change the PC"},
    {"waits", "string", "how long it can wait for others; empty if it does not"},
};

constexpr OutputKey pcsKeys[] = {
    {"name", "string", "for --pc"},
    {"summary", "string", "what the machine is"},
};

constexpr OutputKey validateKeys[] = {
    {"file", "string", "as it was named"},
    {"problem", "string|null", "with which it cannot be read at all"},
    {"mistakes[].line", "integer", "from 1"},
    {"mistakes[].column", "integer", "from 1, in bytes"},
    {"mistakes[].place", "string", "of the value; empty for the outermost one, and in text that is no JSON"},
    {"mistakes[].text", "string", "what is wrong"},
};

constexpr OutputKey compareKeys[] = {
    {"left", "string", "the first PC, as it was named"},
    {"right", "string", "the second"},
    {"differences[].place", "string", "of the fact"},
    {"differences[].left", "string|null", "what the first has there, as JSON; null if it has nothing"},
    {"differences[].right", "string|null", "the same of the second"},
};

constexpr OutputKey surveyKeys[] = {
    {"pc", "string", "its file, as it was named"},
    {"name", "string", "of its description; empty without one"},
    {"status", "integer|null",
     "with which `run` ends on this PC; null if its worker ended without an answer"},
    {"operations[].operation", "string", "its name"},
    {"operations[].arguments", "object", "by name"},
    {"operations[].result", "integer|string|null", "a letter is a text of one character"},
    {"operations[].outputs", "object", "by name"},
    {"operations[].meaning", "string", "the result in words"},
    {"operations[].problem?", "string", "why a question could not be answered"},
    {"records[].level", "integer", "of a log record that marks an error"},
    {"records[].text", "string", "of the record"},
    {"changes", "array", "of the PC, in words"},
    {"error?", "string", "why there is no answer, or not all of it"},
};

constexpr OutputKey trialKeys[] = {
    {"questions[].switch", "string", "of a description, that says the same; empty if there is none"},
    {"questions[].question", "string", "what the documents leave open"},
    {"questions[].here", "string", "the answer of the PC at hand, as the description writes it, or in words"},
    {"questions[].emulated", "string", "the same of the other PC"},
    {"left", "array", "what could not be put back, in words"},
};

constexpr OutputKey conformKeys[] = {
    {"here", "string", "the PC at hand, as it was named"},
    {"emulated", "string", "the PC that it is compared with, as it was named"},
    {"operations", "integer", "how many operations were compared"},
    {"calls", "integer", "how many published calls were compared"},
    {"differences[].kind", "string", "operation or call"},
    {"differences[].name", "string", "of the operation or the call"},
    {"differences[].arguments", "string", "in words; of a log, the number of the record that differs"},
    {"differences[].here", "string|null", "the answer in words; null if the PC was not asked that"},
    {"differences[].emulated", "string|null", "the same of the emulated PC"},
    {"differences[].operations", "array", "names of operations that make this call with these arguments"},
    {"differences[].expected", "string|null", "why it is known, as the file of --expect says"},
    {"unexpected", "integer", "how many differences are not known"},
    {"unmet", "array", "what the file of --expect has and no difference is, in words"},
    {"questions[].switch", "string", "of a description, that says so; empty if there is none"},
    {"questions[].question", "string", "what the documents leave open"},
    {"questions[].here", "string", "the answer, as a description writes it, or in words"},
    {"questions[].emulated", "string", "the same of the emulated PC"},
    {"left", "array", "what --changes could not put back, in words"},
    {"notAsked", "array", "names of operations, which change the first internal disk or write files"},
};

constexpr OutputKey callsKeys[] = {
    {"call", "string", "for --fail"},
    {"failsWith", "string", "how it reports a failure"},
    {"changesPc", "boolean", "whether it changes the PC"},
    {"codes[].name", "string", "of a documented result; its number if it has no name here"},
    {"codes[].code", "integer", "the same as a number"},
};

const std::vector<CommandOutput>& Outputs() {
    const std::vector<OutputKeys> operation = {operationKeys, problemKey, afterProblemKeys,
                                               remarksKeys,   stopKey,    endKeys};
    static const std::vector<CommandOutput> outputs = {
        {"status", {statusKeys, remarkKey, problemKey, remarksKeys, endKeys}},
        {"letters", {lettersKeys, remarkKey, problemKey, remarksKeys, endKeys}},
        {"files", {filesKeys, problemKey, remarksKeys, endKeys}},
        {"check", {checkKeys, problemKey, remarksKeys, endKeys}},
        {"boot", operation},
        {"call", operation},
        {"run", operation},
        {"replay", operation},
        {"recover", {recoverKeys}},
        {"repair-table", {repairTableKeys, backupsKey}},
        {"undo", {undoKeys, backupsKey}},
        {"operations", {operationsKeys}},
        {"pcs", {pcsKeys}},
        {"calls", {callsKeys}},
        {"validate", {validateKeys}},
        {"compare", {compareKeys}},
        {"survey", {surveyKeys}},
        {"conform", {conformKeys, trialKeys}},
    };
    return outputs;
}

}  // namespace

const CommandOutput* FindOutput(std::string_view command) {
    const auto found = std::ranges::find(Outputs(), command, &CommandOutput::command);
    return found != Outputs().end() ? &*found : nullptr;
}
