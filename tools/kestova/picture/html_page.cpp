// The page of a report.

#include "tools/kestova/picture/disk_drawing.h"
#include "tools/kestova/picture/html_parts.h"
#include "tools/kestova/picture/report.h"
#include "tools/kestova/picture/status_text.h"

namespace {

std::string Head(const StatusReport& status) {
    std::string rows;
    for (const std::vector<std::string>& row : HeadRows(status))
        rows += HtmlRow(HtmlTagged("th scope=\"row\"", row[0]) + HtmlTagged("td", row[1]));
    return HtmlSection("pc", "This PC", "<table>\n<tbody>\n" + rows + "</tbody>\n</table>\n");
}

std::string Remarks(const PcReport& report) {
    std::string items;
    for (const Remark& remark : RemarksOf(report)) {
        const std::string text = (remark.isProblem ? "Problem: " : "") + remark.text;
        items += HtmlTagged("li", text, remark.isProblem ? "bad" : "") + "\n";
    }
    return items.empty() ? "" : HtmlSection("notes", "Problems and notes", "<ul>\n" + items + "</ul>\n");
}

std::string PieceCells(const Piece& piece) {
    std::string cells;
    for (const std::string& cell : PieceRow(piece)) {
        const bool isBad =
            piece.partition != nullptr && IsBarring(*piece.partition) && cell == *piece.partition->condition;
        cells += HtmlTagged("td", cell, isBad ? "bad" : cell == "active" ? "good" : "");
    }
    return cells;
}

std::string Disk(const DiskReport& disk) {
    const std::string name = "Disk " + std::to_string(disk.number);
    const std::string id = "about" + std::to_string(disk.number);
    std::string rows;
    for (const Piece& piece : PiecesOf(disk))
        rows += HtmlRow(PieceCells(piece));
    const std::string table =
        rows.empty() ? ""
                     : "<div class=\"wide\" role=\"region\" tabindex=\"0\" aria-label=\"Partitions of " +
                           name + "\">\n<table>\n" + HtmlTitleRow(PieceTitles()) + "<tbody>\n" + rows +
                           "</tbody>\n</table>\n</div>\n";
    return HtmlSection(id, name,
                       HtmlTagged("p", DiskWords(disk, false) + "; " + InternalWords(disk)) + "\n" +
                           DiskDrawing(disk) + table);
}

std::string Check(const SwitchReport& check) {
    std::string rows;
    for (const ConditionReport& condition : check.conditions) {
        const char* const kind = !condition.isMet ? "" : *condition.isMet ? "good" : "bad";
        rows += HtmlRow(HtmlTagged("th scope=\"row\"", condition.question) +
                        HtmlTagged("td", AnswerWord(condition), kind) + HtmlTagged("td", TextOf(condition)));
    }
    return HtmlSection("switch", "Can it boot its recovery partition and come back?",
                       HtmlTagged("p", check.isPossible ? "Yes." : "No.", check.isPossible ? "good" : "bad") +
                           "\n<table>\n" + HtmlTitleRow({"Condition", "Met", "Found"}) + "<tbody>\n" + rows +
                           "</tbody>\n</table>\n");
}

std::string Log(const std::vector<LoggedLine>& log) {
    std::string items;
    for (const LoggedLine& line : log)
        items +=
            line.IsError() ? HtmlTagged("li", "error: " + line.text, "bad") : HtmlTagged("li", line.text);
    const std::string list =
        items.empty() ? "<p>It is empty.</p>\n" : "<ol class=\"log\">" + items + "</ol>\n";
    return HtmlSection("log", "Log of the session", list);
}

}  // namespace

std::string HtmlReport(const PcReport& report) {
    std::string disks;
    for (const DiskReport& disk : report.status.disks)
        disks += Disk(disk);
    return HtmlPage("Kestova report", MakingWords(report),
                    Remarks(report) + Head(report.status) + disks + Check(report.check) + Log(report.log));
}
