// The status of a PC, and its letters.

#include <algorithm>

#include "tools/kestova/json/as_json.h"
#include "tools/kestova/json/json_values.h"

static Json ToJson(const Role& role) {
    return {{"role", role.role}, {"reason", role.reason}};
}

static Json ToJson(const PartitionReport& partition) {
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
            {"roles", ListOf(partition.roles)}};
}

// Of the picture: with what is known of a partition whether it has a letter or not.
static Json WholePartition(const PartitionReport& partition) {
    Json json = ToJson(partition);
    json["slot"] = ToJson(partition.slot);
    json["name"] = ToJson(partition.gptName);
    json["hidden"] = partition.hidden;
    json["condition"] = ToJson(partition.condition);
    return json;
}

static Json ToJson(const Gap& gap) {
    return {{"offset", gap.offset}, {"size", gap.size}};
}

static Json ToJson(const DiskReport& disk) {
    Json partitions = Json::array();
    for (const PartitionReport& partition : disk.partitions)
        partitions.push_back(WholePartition(partition));
    return {{"number", disk.number},       {"bus", ToJson(disk.bus)},
            {"model", ToJson(disk.model)}, {"serial", ToJson(disk.serial)},
            {"size", ToJson(disk.size)},   {"sectorSize", ToJson(disk.sectorSize)},
            {"style", ToJson(disk.style)}, {"isInternal", ToJson(disk.isInternal)},
            {"reason", disk.reason},       {"partitions", partitions},
            {"gaps", ListOf(disk.gaps)}};
}

static Json ToJson(const WindowsPlace& place) {
    return {{"disk", place.disk}, {"partition", place.partition}, {"letter", ToJson(place.letter)}};
}

static Json ToJson(const RecordReport& record) {
    return {{"partition", record.partition},
            {"exists", record.exists},
            {"recorded", ToJson(record.recorded)},
            {"bootSystem", ToJson(record.bootSystem)},
            {"words", record.words}};
}

static Json ToJson(const LetterReport& letter) {
    return {{"letter", letter.letter},
            {"disk", ToJson(letter.disk)},
            {"partition", ToJson(letter.partition)},
            {"here", ToJson(letter.here)}};
}

// The key "remark" has the one of a code, "remarks" all.
template <typename Report>
static void AddRemarksAndProblem(const Report& report, const char* code, Json& json) {
    const auto remark = std::ranges::find(report.remarks, code, &Finding::code);
    if (remark != report.remarks.end()) json["remark"] = remark->text;
    AddProblem(report.problem, json);
    AddRemarks(report.remarks, json);
}

std::string AsJson(const StatusReport& status) {
    Json json = {{"firmware", status.firmware},
                 {"system", status.system},
                 {"windowsDirectory", ToJson(status.windowsDirectory)},
                 {"internalDisk", ToJson(status.internalDisk)},
                 {"style", ToJson(status.style)},
                 {"activePartition", ToJson(status.activePartition)},
                 {"partitions", ListOf(status.partitions)},
                 {"layout", status.layout},
                 {"layoutName", status.layoutName},
                 {"encryptedVolumes", ToJson(status.encryptedVolumes)},
                 {"recoveryDisc", ToJson(status.recoveryDisc)},
                 {"recoveryStick", ToJson(status.recoveryStick)},
                 {"cachePartition", status.cachePartition},
                 {"windows", ToJson(status.windows)},
                 {"disks", ListOf(status.disks)},
                 {"record", ToJson(status.record)}};
    AddRemarksAndProblem(status, "twoActiveFlags", json);
    return Line(json);
}

std::string AsJson(const LettersReport& letters) {
    Json json = {{"letters", ListOf(letters.letters)}};
    AddRemarksAndProblem(letters, "noLetters", json);
    return Line(json);
}
