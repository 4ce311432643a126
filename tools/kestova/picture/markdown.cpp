// A report as Markdown, with the tables that chats and trackers show.

#include "tools/kestova/picture/markdown_parts.h"
#include "tools/kestova/picture/report.h"
#include "tools/kestova/picture/status_text.h"

namespace {

constexpr const char* heading = "# Kestova report";

std::string Remarks(const PcReport& report) {
    std::string items;
    for (const Remark& remark : RemarksOf(report))
        items +=
            std::string("- ") + (remark.isProblem ? "**Problem:** " : "") + MarkdownText(remark.text) + "\n";
    return items.empty() ? "" : "\n" + items;
}

std::string Disk(const DiskReport& disk) {
    std::string text = "\n## Disk " + std::to_string(disk.number) + "\n\n" +
                       MarkdownText(DiskWords(disk, false) + "; " + InternalWords(disk)) + "\n";
    const std::vector<Piece> pieces = PiecesOf(disk);
    if (!pieces.empty()) text += "\n" + MarkdownTitleRow(PieceTitles());
    for (const Piece& piece : pieces)
        text += MarkdownRow(PieceRow(piece));
    return text;
}

std::string Check(const SwitchReport& check) {
    std::string text = std::string("\n## Can it boot its recovery partition and come back? ") +
                       (check.isPossible ? "Yes" : "No") + "\n\n" +
                       MarkdownTitleRow({"Condition", "Met", "Found"});
    for (const ConditionReport& condition : check.conditions)
        text += MarkdownRow({condition.question, AnswerWord(condition), TextOf(condition)});
    return text;
}

// A chat has no room for the whole log.
std::string Errors(const std::vector<LoggedLine>& log) {
    std::string items;
    for (const LoggedLine& line : log) {
        if (line.IsError()) items += "- " + MarkdownText(line.text) + "\n";
    }
    return "\n## Errors in the log\n\n" + (items.empty() ? "None.\n" : items);
}

}  // namespace

std::string MarkdownReport(const PcReport& report) {
    std::string text = std::string(heading) + "\n\n" + MarkdownText(MakingWords(report)) + "\n" +
                       Remarks(report) + "\n" + MarkdownTitleRow({"This PC", ""});
    for (const std::vector<std::string>& row : HeadRows(report.status))
        text += MarkdownRow(row);
    for (const DiskReport& disk : report.status.disks)
        text += Disk(disk);
    return text + Check(report.check) + Errors(report.log);
}

bool IsReport(const std::string& text) {
    return text.starts_with("<!DOCTYPE html>\n<!-- Kestova report -->\n") || text.starts_with(heading);
}
