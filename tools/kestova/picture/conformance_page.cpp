#include "tools/kestova/picture/conformance_page.h"

#include "tools/kestova/conformance/conformance_tables.h"
#include "tools/kestova/picture/html_parts.h"
#include "tools/kestova/picture/markdown_parts.h"

namespace {

constexpr const char* heading = "Kestova report: where two PCs answer differently";

std::string Lead(const ConformanceReport& report) {
    return report.here + " and " + report.emulated + ": " + CountWords(report) + ". " + NotAskedWords(report);
}

std::string HtmlTable(const ConformanceTable& table) {
    std::string rows;
    for (const std::vector<std::string>& row : table.rows) {
        std::string cells;
        for (const std::string& cell : row)
            cells += HtmlTagged("td", cell);
        rows += HtmlRow(cells);
    }
    return "<table>\n" + HtmlTitleRow(table.columns) + "<tbody>\n" + rows + "</tbody>\n</table>\n";
}

std::string HtmlList(const std::vector<std::string>& items) {
    std::string list;
    for (const std::string& item : items)
        list += HtmlTagged("li", item, "bad") + "\n";
    return "<ul>\n" + list + "</ul>\n";
}

}  // namespace

std::string ConformanceHtml(const ConformanceReport& report, const std::string& making) {
    std::string content = HtmlTagged("p", Lead(report)) + "\n";
    if (!report.left.empty()) content += HtmlSection("left", "Could not be put back", HtmlList(report.left));
    int number = 0;
    for (const ConformanceTable& table : TablesOf(report, LongAnswers::Whole))
        content += HtmlSection("table" + std::to_string(++number), table.title, HtmlTable(table));
    if (!report.unmet.empty())
        content += HtmlSection("unmet", "Expected, but no difference", HtmlList(report.unmet));
    return HtmlPage(heading, making, content);
}

std::string ConformanceMarkdown(const ConformanceReport& report, const std::string& making) {
    std::string text = "# " + std::string(heading) + "\n\n" + MarkdownText(making) + "\n\n" +
                       MarkdownText(Lead(report)) + "\n";
    for (const std::string& left : report.left)
        text += "\n**Could not be put back:** " + MarkdownText(left) + "\n";
    for (const ConformanceTable& table : TablesOf(report, LongAnswers::Whole)) {
        text += "\n## " + MarkdownText(table.title) + "\n\n" + MarkdownTitleRow(table.columns);
        for (const std::vector<std::string>& row : table.rows)
            text += MarkdownRow(row);
    }
    for (const std::string& unmet : report.unmet)
        text += "\n" + MarkdownText(unmet) + "\n";
    return text;
}
