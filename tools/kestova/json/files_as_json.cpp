// Files, the check of a switch, and what is done with images.

#include "tools/kestova/json/as_json.h"
#include "tools/kestova/json/json_values.h"

static const char* KindWord(bool isFolder) {
    return isFolder ? "folder" : "file";
}

static Json ToJson(const ListedFile& file, bool hasHash) {
    Json json = {{"name", file.entry.name},
                 {"kind", KindWord(file.entry.kind == machine::FileKind::Folder)},
                 {"bytes", ToJson(file.entry.bytes)}};
    if (hasHash) json["sha256"] = ToJson(file.sha256);
    return json;
}

static Json ToJson(const ConditionReport& condition) {
    const bool isAdvised = condition.isMet == false && !condition.advice.empty();
    return {{"code", condition.code},
            {"question", condition.question},
            {"met", ToJson(condition.isMet)},
            {"found", condition.found},
            {"advice", isAdvised ? Json(condition.advice) : Json()}};
}

static void AddBackup(const std::string& file, Json& json) {
    if (!file.empty()) json["backups"] = Json::array({file});
}

std::string AsJson(const SwitchReport& report) {
    Json json = {{"possible", report.isPossible}, {"conditions", ListOf(report.conditions)}};
    AddProblem(report.problem, json);
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
    AddProblem(report.problem, json);
    return Line(json, true);
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
