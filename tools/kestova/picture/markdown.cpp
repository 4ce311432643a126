// A report as Markdown, with the tables that chats and trackers show.

#include "tools/kestova/picture/report.h"
#include "tools/kestova/picture/status_text.h"

namespace {

constexpr const char* heading = "# Kestova report";

// No character of the text means anything: a backslash takes the meaning of punctuation, and after a space
// without width an "@all" names nobody. No text begins a line.
std::string Literal(std::string_view text) {
    std::string literal;
    for (const char unit : Printable(text)) {
        if (std::string_view("\\`*_[]<>|~&").find(unit) != std::string_view::npos) literal += '\\';
        literal += unit;
        if (unit == '@') literal += "\u200B";
    }
    return literal;
}

std::string Row(const std::vector<std::string>& cells) {
    std::string row = "|";
    for (const std::string& cell : cells)
        row += " " + Literal(cell) + " |";
    return row + "\n";
}

std::string TitleRow(const std::vector<std::string>& titles) {
    std::string rule = "|";
    for (size_t i = 0; i < titles.size(); ++i)
        rule += "---|";
    return Row(titles) + rule + "\n";
}

std::string Remarks(const PcReport& report) {
    std::string items;
    for (const Remark& remark : RemarksOf(report))
        items += std::string("- ") + (remark.isProblem ? "**Problem:** " : "") + Literal(remark.text) + "\n";
    return items.empty() ? "" : "\n" + items;
}

std::string Disk(const DiskReport& disk) {
    std::string text = "\n## Disk " + std::to_string(disk.number) + "\n\n" +
                       Literal(DiskWords(disk, false) + "; " + InternalWords(disk)) + "\n";
    const std::vector<Piece> pieces = PiecesOf(disk);
    if (!pieces.empty()) text += "\n" + TitleRow(PieceTitles());
    for (const Piece& piece : pieces)
        text += Row(PieceRow(piece));
    return text;
}

std::string Check(const SwitchReport& check) {
    std::string text = std::string("\n## Can it boot its recovery partition and come back? ") +
                       (check.isPossible ? "Yes" : "No") + "\n\n" + TitleRow({"Condition", "Met", "Found"});
    for (const ConditionReport& condition : check.conditions)
        text += Row({condition.question, AnswerWord(condition), TextOf(condition)});
    return text;
}

// A chat has no room for the whole log.
std::string Errors(const std::vector<LoggedLine>& log) {
    std::string items;
    for (const LoggedLine& line : log) {
        if (line.IsError()) items += "- " + Literal(line.text) + "\n";
    }
    return "\n## Errors in the log\n\n" + (items.empty() ? "None.\n" : items);
}

}  // namespace

std::string MarkdownText(const PcReport& report) {
    std::string text = std::string(heading) + "\n\n" + Literal(MakingWords(report)) + "\n" + Remarks(report) +
                       "\n" + TitleRow({"This PC", ""});
    for (const std::vector<std::string>& row : HeadRows(report.status))
        text += Row(row);
    for (const DiskReport& disk : report.status.disks)
        text += Disk(disk);
    return text + Check(report.check) + Errors(report.log);
}

bool IsReport(const std::string& text) {
    return text.starts_with("<!DOCTYPE html>\n<!-- Kestova report -->\n") || text.starts_with(heading);
}
