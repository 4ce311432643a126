#include "tools/kestova/letters.h"

#include <vector>

#include "tools/kestova/operations.h"
#include "tools/kestova/text.h"

namespace {

constexpr int mostLetters = 26;

// The answers of the class for a volume that does not tell where it lies.
constexpr int unknownDisk = 255;
constexpr int unknownPartition = 0;

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
    if (report["result"] != 1)
        letters["problem"] =
            "the letters of the installed Windows could not all be told; Windows PE must be running";
    return letters;
}

std::string LettersText(const Json& letters) {
    std::vector<std::vector<std::string>> rows = {{"Letter", "Disk", "Partition", "Here"}};
    for (const Json& letter : letters["letters"])
        rows.push_back(
            {Cell(letter["letter"]), Cell(letter["disk"]), Cell(letter["partition"]), Cell(letter["here"])});
    return Table(rows, "");
}
