#include "tools/kestova/picture/report.h"

#include <algorithm>

#include "tools/kestova/picture/columns.h"

namespace {

// What the report shows of a partition.
std::vector<const Column*> Shown() {
    return ColumnsOf("number,slot,start,size,type,name,active,hidden,letter,label,filesystem,condition,role");
}

}  // namespace

std::string MakingWords(const PcReport& report) {
    const std::string names = Joined(report.images, ", ", [](const std::string& name) { return name; });
    return "Made by " + report.maker + " at " + report.time + (names.empty() ? "" : " of " + names) +
           ". Nothing was changed.";
}

std::vector<Remark> RemarksOf(const PcReport& report) {
    std::vector<Remark> remarks;
    for (const std::string& problem : {report.status.problem, report.check.problem}) {
        const bool isNew = std::ranges::count(remarks, problem, &Remark::text) == 0;
        if (!problem.empty() && isNew) remarks.push_back({problem, true});
    }
    for (const Finding& remark : report.status.remarks)
        remarks.push_back({remark.text, false});
    for (const std::string& note : report.notes)
        remarks.push_back({note, false});
    return remarks;
}

std::vector<std::string> PieceTitles() {
    std::vector<std::string> titles;
    for (const Column* const column : Shown())
        titles.push_back(column->look.title);
    return titles;
}

std::vector<std::string> PieceRow(const Piece& piece) {
    std::vector<std::string> row;
    for (const Cell& cell : CellsOf(piece, Shown(), false))
        row.push_back(cell.text);
    return row;
}
