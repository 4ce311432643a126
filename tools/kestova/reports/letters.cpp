#include "tools/kestova/reports/letters.h"

#include "base/drive_letter.h"
#include "manager/letter_map/letter_map_failures.h"
#include "manager/letter_map/unread_location.h"

namespace {

constexpr int mostLetters = 26;

constexpr const char* noLetters =
    "no letter was told: the installed Windows or the running system remembers none, none could be read, or "
    "none stands for a volume of both";

// What went wrong, by the record that reports it.
struct Reason {
    const WCHAR* record;
    const char* words;
};

constexpr Reason reasons[] = {
    {runningSystemNotRead, "those of the running system cannot be read"},
    {installedWindowsNotLoaded,
     "it was not found, or its registry could not be loaded, which needs Windows PE"},
    {installedWindowsNotRead, "its registry is missing, damaged or without letters"},
    {installedWindowsNotUnloaded, "its registry could not be unloaded, which needs Windows PE"},
};

// In the order of the records.
std::string ProblemText(const std::vector<LogEntry>& log) {
    std::string text = "the letters of the installed Windows could not all be told";
    const char* separator = ": ";
    for (const LogEntry& record : log) {
        for (const Reason& reason : reasons) {
            if (record.Text() != reason.record) continue;
            text += separator + std::string(reason.words);
            separator = "; ";
        }
    }
    return text;
}

constexpr const char* stillLoaded =
    "the registry of the installed Windows is still loaded: reg unload HKLM\\TEMSYSTEM unloads it";

// Whether its registry stayed loaded, as after an unloading that was started and failed.
bool IsStillLoaded() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, installedWindowsHive, 0, KEY_READ, &key) != ERROR_SUCCESS)
        return false;
    RegCloseKey(key);
    return true;
}

LetterReport Translate(Session& session, const DriveRecord& record) {
    LetterReport letter{.letter = record.letter};
    const Value here =
        session.Ask(FindOperation("GetDriveLetter"), {{"disk", record.disk}, {"partition", record.partition}})
            .result;
    if (record.disk != unreadDisk) letter.disk = record.disk;
    if (record.partition != unreadPartition) letter.partition = record.partition;
    if (const char found = std::get<std::string>(here).front(); found != noLetter)
        letter.here = static_cast<WCHAR>(found);
    return letter;
}

}  // namespace

LettersReport ReadLetters(Session& session) {
    const OperationReport report =
        session.Call(FindOperation("GetWinDriveLetters"), {{"count", mostLetters}});
    LettersReport letters;
    for (const DriveRecord& record : std::get<std::vector<DriveRecord>>(ValueOf(report.outputs, "records")))
        letters.letters.push_back(Translate(session, record));
    if (IsFailure(*report.operation, report.result)) {
        letters.problem = ProblemText(report.log);
    } else if (letters.letters.empty()) {
        letters.remarks = {{"noLetters", noLetters}};  // the library does not report why
    }
    if (letters.problem.empty() && IsStillLoaded()) letters.problem = stillLoaded;
    return letters;
}
