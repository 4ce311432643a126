#include "tools/kestova/reports/as_json.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "base/utf.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/reports/call_words.h"
#include "tools/kestova/reports/remarks.h"

namespace {

// Keys keep the order in which they were written.
using Json = nlohmann::ordered_json;

// What a terminal would obey is escaped as JSON does it, which reads as the same text.
std::string Dump(const Json& json, bool inAscii) {
    return Printable(json.dump(-1, ' ', inAscii, Json::error_handler_t::replace));
}

std::string Line(const Json& json, bool inAscii = false) {
    return Dump(json, inAscii) + "\n";
}

// The line of an object with further keys at its end, each object in its own encoding.
std::string LineWith(const std::string& line, const Json& further, bool inAscii) {
    if (further.empty()) return line;
    return line.substr(0, line.rfind('}')) + "," + Dump(further, inAscii).substr(1) + "\n";
}

// --- values ---

Json ToJson(std::monostate) {
    return nullptr;
}

Json ToJson(bool flag) {
    return flag;
}

Json ToJson(int number) {
    return number;
}

Json ToJson(uint64_t number) {
    return number;
}

Json ToJson(int64_t number) {
    return number;
}

Json ToJson(const std::string& text) {
    return text;
}

Json ToJson(const std::vector<DriveRecord>& records) {
    Json json = Json::array();
    for (const DriveRecord& record : records) {
        json.push_back(
            {{"iDiskNum", record.disk}, {"iPartNum", record.partition}, {"cDriveLetter", record.letter}});
    }
    return json;
}

Json ToJson(WCHAR letter) {
    return LetterText(letter);
}

Json ToJson(const Value& value) {
    return std::visit([](const auto& held) { return ToJson(held); }, value);
}

Json ToJson(const Values& values) {
    Json json = Json::object();
    for (const auto& [name, value] : values)
        json[name] = ToJson(value);
    return json;
}

Json ToJson(const WindowsPlace& place) {
    return {{"disk", place.disk}, {"partition", place.partition}, {"letter", ToJson(place.letter)}};
}

Json ToJson(const RecordReport& record) {
    return {{"partition", record.partition},
            {"exists", record.exists},
            {"recorded", record.recorded ? Json(*record.recorded) : Json()},
            {"bootSystem", record.bootSystem ? Json(*record.bootSystem) : Json()},
            {"words", record.words}};
}

template <typename T>
Json ToJson(const std::optional<T>& value) {
    return value ? ToJson(*value) : Json();
}

Json ToJson(const Finding& finding) {
    return {{"code", finding.code}, {"text", finding.text}};
}

void AddRemarks(const std::vector<Finding>& remarks, Json& json) {
    for (const Finding& remark : remarks)
        json["remarks"].push_back(ToJson(remark));
}

// The key "remark" has the one of a code, "remarks" all.
template <typename Report>
void AddRemarksAndProblem(const Report& report, const char* code, Json& json) {
    const auto remark = std::ranges::find(report.remarks, code, &Finding::code);
    if (remark != report.remarks.end()) json["remark"] = remark->text;
    if (!report.problem.empty()) json["problem"] = report.problem;
    AddRemarks(report.remarks, json);
}

// --- status and letters ---

Json ToJson(const PartitionReport& partition) {
    Json roles = Json::array();
    for (const Role& role : partition.roles)
        roles.push_back({{"role", role.role}, {"reason", role.reason}});
    return {{"number", partition.number},
            {"offset", partition.offset},
            {"size", partition.size},
            {"type", partition.type},
            {"typeName", partition.typeName},
            {"active", partition.active},
            {"letter", ToJson(partition.letter)},
            {"label", ToJson(partition.label)},
            {"fileSystem", ToJson(partition.fileSystem)},
            {"hide", partition.hide},
            {"roles", roles}};
}

// Of the picture: with what is known of a partition whether it has a letter or not.
Json WholePartition(const PartitionReport& partition) {
    Json json = ToJson(partition);
    json["slot"] = ToJson(partition.slot);
    json["name"] = ToJson(partition.gptName);
    json["hidden"] = partition.hidden;
    json["condition"] = ToJson(partition.condition);
    return json;
}

Json ToJson(const Gap& gap) {
    return {{"offset", gap.offset}, {"size", gap.size}};
}

Json ToJson(const DiskReport& disk) {
    Json partitions = Json::array();
    for (const PartitionReport& partition : disk.partitions)
        partitions.push_back(WholePartition(partition));
    Json gaps = Json::array();
    for (const Gap& gap : disk.gaps)
        gaps.push_back(ToJson(gap));
    return {{"number", disk.number},
            {"bus", ToJson(disk.bus)},
            {"model", ToJson(disk.model)},
            {"serial", ToJson(disk.serial)},
            {"size", ToJson(disk.size)},
            {"sectorSize", ToJson(disk.sectorSize)},
            {"style", ToJson(disk.style)},
            {"isInternal", ToJson(disk.isInternal)},
            {"reason", disk.reason},
            {"partitions", partitions},
            {"gaps", gaps}};
}

Json ToJson(const LetterReport& letter) {
    return {{"letter", letter.letter},
            {"disk", ToJson(letter.disk)},
            {"partition", ToJson(letter.partition)},
            {"here", ToJson(letter.here)}};
}

// --- files ---

const char* KindWord(bool isFolder) {
    return isFolder ? "folder" : "file";
}

Json ToJson(const ListedFile& file, bool hasHash) {
    Json json = {{"name", file.entry.name},
                 {"kind", KindWord(file.entry.kind == machine::FileKind::Folder)},
                 {"bytes", ToJson(file.entry.bytes)}};
    if (hasHash) json["sha256"] = ToJson(file.sha256);
    return json;
}

// --- the check of a switch ---

Json ToJson(const ConditionReport& condition) {
    const bool isAdvised = condition.isMet == false && *condition.advice != '\0';
    return {{"code", condition.code},
            {"question", condition.question},
            {"met", ToJson(condition.isMet)},
            {"found", condition.found},
            {"advice", isAdvised ? Json(condition.advice) : Json()}};
}

// --- operations ---

template <typename Element>
Json ListOf(const std::vector<Element>& elements) {
    Json json = Json::array();
    for (const Element& element : elements)
        json.push_back(ToJson(element));
    return json;
}

Json ToJson(const LogEntry& record) {
    return {{"level", record.level}, {"text", ToUtf8(record.Text())}};
}

Json ToJson(const machine::CallRecord& call) {
    Json json = {{"call", call.call}, {"arguments", call.arguments}, {"result", call.result}};
    if (call.injected) json["injected"] = true;
    return json;
}

Json ToJson(const std::vector<LogEntry>& records) {
    Json json = Json::array();
    for (const LogEntry& record : records)
        json.push_back(ToJson(record));
    return json;
}

Json ToJson(const Trace& trace) {
    Json json = Json::array();
    for (const machine::JournalEntry& entry : trace)
        json.push_back(std::visit([](const auto& happened) { return ToJson(happened); }, entry));
    return json;
}

Json ToJson(const std::vector<Meaning>& meanings) {
    Json json = Json::array();
    for (const Meaning& meaning : meanings) {
        json.push_back(
            {{"value", ToJson(meaning.value)}, {"words", meaning.words}, {"failure", meaning.failure}});
    }
    return json;
}

const char* KindName(Kind kind) {
    switch (kind) {
        case Kind::Flag:
            return "flag";
        case Kind::Letter:
            return "letter";
        case Kind::Text:
            return "text";
        case Kind::List:
            return "list";
        default:
            return "number";
    }
}

Json ToJson(const Parameter& parameter) {
    Json json = {{"name", parameter.name},
                 {"kind", KindName(parameter.kind)},
                 {"direction", parameter.output ? "out" : "in"},
                 {"words", parameter.words},
                 {"values", ToJson(parameter.meanings)}};
    if (!IsNothing(parameter.standard)) json["default"] = ToJson(parameter.standard);
    return json;
}

Json ToJson(const Operation& operation) {
    Json parameters = Json::array();
    for (const Parameter& parameter : operation.parameters)
        parameters.push_back(ToJson(parameter));
    return {{"operation", operation.name},      {"summary", operation.summary},
            {"parameters", parameters},         {"results", ToJson(operation.results)},
            {"otherwise", operation.otherwise}, {"changesPc", operation.changesPc}};
}

// --- what the tool and the emulated PC come with ---

Json ToJson(const machine::NamedMachine& machine) {
    return {{"name", machine.name}, {"summary", machine.summary}};
}

Json ToJson(const machine::CallInfo& call) {
    return {{"call", call.name}, {"failsWith", FailureWords(call.failsWith)}, {"changesPc", call.changesPc}};
}

template <typename List>
std::string Lines(const List& list) {
    std::string lines;
    for (const auto& element : list)
        lines += Line(ToJson(element));
    return lines;
}

void AddBackup(const std::string& file, Json& json) {
    if (!file.empty()) json["backups"] = Json::array({file});
}

}  // namespace

std::string AsJson(const StatusReport& status) {
    Json partitions = Json::array();
    for (const PartitionReport& partition : status.partitions)
        partitions.push_back(ToJson(partition));
    Json json = {{"firmware", status.firmware},
                 {"system", status.system},
                 {"windowsDirectory", ToJson(status.windowsDirectory)},
                 {"internalDisk", ToJson(status.internalDisk)},
                 {"style", ToJson(status.style)},
                 {"activePartition", ToJson(status.activePartition)},
                 {"partitions", partitions},
                 {"layout", status.layout},
                 {"layoutName", status.layoutName},
                 {"encryptedVolumes", ToJson(status.encryptedVolumes)},
                 {"recoveryDisc", ToJson(status.recoveryDisc)},
                 {"recoveryStick", ToJson(status.recoveryStick)},
                 {"cachePartition", status.cachePartition},
                 {"windows", ToJson(status.windows)}};
    Json disks = Json::array();
    for (const DiskReport& disk : status.disks)
        disks.push_back(ToJson(disk));
    const Json picture = {{"disks", disks}, {"record", ToJson(status.record)}};
    Json last = Json::object();
    AddRemarksAndProblem(status, "twoActiveFlags", last);
    // In ASCII, as below: names of partitions are from a medium, too.
    return LineWith(LineWith(Line(json), picture, true), last, false);
}

std::string AsJson(const LettersReport& letters) {
    Json list = Json::array();
    for (const LetterReport& letter : letters.letters)
        list.push_back(ToJson(letter));
    Json json = {{"letters", list}};
    AddRemarksAndProblem(letters, "noLetters", json);
    return Line(json);
}

std::string AsJson(const SwitchReport& report) {
    Json json = {{"possible", report.isPossible}, {"conditions", ListOf(report.conditions)}};
    if (!report.problem.empty()) json["problem"] = report.problem;
    return Line(json);
}

// In ASCII: a name from a medium can have characters that a terminal obeys.
std::string AsJson(const FilesReport& report) {
    Json entries = Json::array();
    for (const ListedFile& file : report.files)
        entries.push_back(ToJson(file, report.hasHashes));
    const FoundVolume& volume = report.volume;
    Json json = {{"path", "\\" + report.place.path},
                 {"kind", KindWord(report.isFolder)},
                 {"disk", ToJson(volume.disk)},
                 {"partition", ToJson(volume.partition)},
                 {"letter", volume.letters.empty() ? Json() : Json(volume.letters.substr(0, 1))},
                 {"entries", entries}};
    if (!report.problem.empty()) json["problem"] = report.problem;
    return Line(json, true);
}

std::string AsJson(const OperationReport& report) {
    Json json = {{"operation", report.operation->name},
                 {"arguments", ToJson(report.arguments)},
                 {"result", ToJson(report.result)},
                 {"outputs", ToJson(report.outputs)},
                 {"log", ToJson(report.log)}};
    if (report.showsTrace) json["trace"] = ToJson(report.trace);
    if (!report.backups.empty()) json["backups"] = report.backups;
    if (!report.unwritten.empty()) json["written"] = false;
    if (!report.problem.empty()) json["problem"] = report.problem;
    if (!report.reasons.empty()) json["reasons"] = ListOf(report.reasons);
    if (report.outcome != nullptr) json["outcome"] = report.outcome;
    if (report.changes) json["changes"] = *report.changes;
    AddRemarks(report.remarks, json);
    return Line(json);
}

std::string AsJson(const RecoveryReport& report) {
    Json json = {{"image", report.image}, {"change", ToJson(report.change)}};
    if (report.isDryRun) json["recovered"] = false;
    return Line(json);
}

std::string AsJson(const TableRepairReport& report) {
    Json json = {{"image", report.image}, {"problems", report.problems}, {"repaired", report.isRepaired}};
    AddBackup(report.backup, json);
    return Line(json);
}

std::string AsJson(const UndoReport& report) {
    Json json = {
        {"image", report.image}, {"file", report.file}, {"undone", report.isUndone && !report.isDryRun}};
    AddBackup(report.backup, json);
    return Line(json);
}

std::string ErrorAsJson(const std::string& message, int status) {
    return Line({{"error", message}, {"status", status}}, true);
}

// In ASCII: what the line has in it is from a medium, too.
std::string WithEnd(const std::string& line, const EndReport& end) {
    Json json = Json::parse(line);
    for (const FaultCount& fault : end.faults)
        json["faultsMet"].push_back({{"fault", fault.fault}, {"met", fault.met}});
    AddRemarks(UnmetFaults(end.faults), json);
    if (end.ledger) json["ledger"] = *end.ledger;
    return Line(json, true);
}

std::string AsJson(const std::vector<Operation>& operations) {
    return Lines(operations);
}

std::string AsJson(const std::vector<machine::NamedMachine>& machines) {
    return Lines(machines);
}

std::string AsJson(std::span<const machine::CallInfo> calls) {
    return Lines(calls);
}
