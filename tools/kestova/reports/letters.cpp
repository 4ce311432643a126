#include "tools/kestova/reports/letters.h"

#include <string_view>
#include <vector>

#include "tools/kestova/common/text.h"
#include "tools/kestova/operations/operations.h"

namespace {

constexpr int mostLetters = 26;

// The answers of the class for a volume that does not tell where it lies.
constexpr int unknownDisk = 255;
constexpr int unknownPartition = 0;

constexpr const char* noLetters =
    "no letter was told: the installed Windows or the running system remembers none, none could be read, or "
    "none stands for a volume of both";

// What went wrong, by the record that tells it.
struct Problem {
    std::string_view record;
    const char* words;
};

constexpr Problem problems[] = {
    {"Kestova::GetWinDriveLetters\t\tRead WINPE Registry fail.",
     "those of the running system cannot be read"},
    {"Kestova::GetWinDriveLetters\t\tLoad Windows Registry failed.",
     "it was not found, or its registry could not be loaded, which needs Windows PE"},
    {"Kestova::GetWinDriveLetters Read WINDOWS Registry fail.",
     "its registry is missing, damaged or without letters"},
    {"Kestova::GetWinDriveLetters\t\tUnload Windows Registry failed.",
     "its registry could not be unloaded, which needs Windows PE"},
};

// In the order of the records.
std::string ProblemText(const Json& log) {
    std::string reasons;
    for (const Json& record : log) {
        for (const Problem& problem : problems) {
            if (record["text"] == problem.record) {
                reasons += reasons.empty() ? ": " : "; ";
                reasons += problem.words;
            }
        }
    }
    return "the letters of the installed Windows could not all be told" + reasons;
}

Json LetterJson(Session& session, const Json& record) {
    const Json& disk = record["iDiskNum"];
    const Json& partition = record["iPartNum"];
    const Json place = {{"disk", disk}, {"partition", partition}};
    const Json here = session.Call(FindOperation("GetDriveLetter"), place)["result"];
    return {{"letter", record["cDriveLetter"]},
            {"disk", disk == unknownDisk ? Json() : disk},
            {"partition", partition == unknownPartition ? Json() : partition},
            {"here", here == "0" ? Json() : here}};
}

std::string Cell(const Json& value) {
    if (value.is_null()) return "-";
    return value.is_string() ? value.get<std::string>() : value.dump();
}

}  // namespace

Json ReadLetters(Session& session) {
    const Json report = session.Call(FindOperation("GetWinDriveLetters"), {{"count", mostLetters}});
    Json letters = {{"letters", Json::array()}};
    for (const Json& record : report["outputs"]["records"])
        letters["letters"].push_back(LetterJson(session, record));
    if (report["result"] != 1) {
        letters["problem"] = ProblemText(report["log"]);
    } else if (letters["letters"].empty()) {
        letters["remark"] = noLetters;  // which the library answers without saying why
    }
    return letters;
}

std::string LettersText(const Json& letters) {
    std::vector<std::vector<std::string>> rows = {{"Letter", "Disk", "Partition", "Here"}};
    for (const Json& letter : letters["letters"])
        rows.push_back(
            {Cell(letter["letter"]), Cell(letter["disk"]), Cell(letter["partition"]), Cell(letter["here"])});
    return Table(rows, "");
}
