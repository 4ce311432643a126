#include "tools/kestova/conformance/conformance_text.h"

#include "tools/kestova/common/fitted_table.h"
#include "tools/kestova/conformance/conformance_tables.h"

namespace {

constexpr size_t leastWidth = 12;

// The last column takes what is left.
std::string TableText(const ConformanceTable& table, const Terminal& terminal) {
    std::vector<TableColumn> columns;
    for (const std::string& title : table.columns)
        columns.push_back({title, leastWidth});
    columns.back() = {table.columns.back()};
    std::vector<std::vector<Cell>> rows;
    for (const std::vector<std::string>& row : table.rows) {
        std::vector<Cell>& cells = rows.emplace_back();
        for (const std::string& text : row)
            cells.push_back({text});
    }
    return table.title + ":\n" + FittedTable(columns, std::move(rows), terminal) + "\n";
}

}  // namespace

std::string ConformanceText(const ConformanceReport& report, const Terminal& terminal) {
    std::string text;
    for (const ConformanceTable& table : TablesOf(report, LongAnswers::Cut))
        text += TableText(table, terminal);
    if (!report.questions.empty()) text += NotAskedWords(report) + "\n";
    return text + CountWords(report) + "\n";
}
