#include "tools/kestova/common/fitted_table.h"

#include <algorithm>
#include <iterator>
#include <numeric>

#include "tools/kestova/common/display_width.h"

namespace {

constexpr size_t indent = 2;
constexpr size_t between = 2;
constexpr size_t roomToWrap = 24;  // what the last column keeps while others can be cut

// What each meaning looks like: a parameter of "select graphic rendition".
struct Colour {
    Meant meant;
    const char* sgr;
};

constexpr Colour colours[] = {
    {Meant::Chosen, "1"},      // bold
    {Meant::Good, "32"},       // green
    {Meant::Barring, "1;31"},  // bold red
};

using Row = std::vector<Cell>;

std::vector<size_t> WidthsOf(const std::vector<TableColumn>& columns, const std::vector<Row>& rows) {
    std::vector<size_t> widths;
    for (const TableColumn& column : columns)
        widths.push_back(DisplayWidth(column.title));
    for (const Row& row : rows) {
        for (size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], DisplayWidth(row[i].text));
    }
    return widths;
}

size_t Whole(const std::vector<size_t>& widths) {
    return std::accumulate(widths.begin(), widths.end(), indent + between * (widths.size() - 1));
}

std::vector<size_t> LeastWidths(const std::vector<TableColumn>& columns, std::vector<size_t> widths) {
    for (size_t i = 0; i < widths.size(); ++i)
        widths[i] = std::min(widths[i], columns[i].least);
    return widths;
}

// Takes columns from the widest one that can be cut, until the whole fits.
void Cut(const std::vector<size_t>& least, size_t available, std::vector<size_t>& widths) {
    while (Whole(widths) > available) {
        size_t widest = widths.size();
        for (size_t i = 0; i < widths.size(); ++i) {
            if (widths[i] > least[i] && (widest == widths.size() || widths[i] > widths[widest])) widest = i;
        }
        if (widest == widths.size()) return;
        --widths[widest];
    }
}

// The text broken at blanks into lines of that width.
std::vector<std::string> LinesOf(const std::string& text, size_t width) {
    std::vector<std::string> lines = {""};
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find(' ', at), text.size());
        const std::string word = text.substr(at, end - at);
        std::string& line = lines.back();
        if (line.empty())
            line = word;
        else if (DisplayWidth(line) + 1 + DisplayWidth(word) <= width)
            line += " " + word;
        else
            lines.push_back(word);
        at = end + 1;
    }
    return lines;
}

std::string Blanks(size_t count) {
    return std::string(count, ' ');
}

std::string LineOf(const Row& row, const std::vector<size_t>& widths, const Terminal& terminal) {
    std::string line = Blanks(indent);
    size_t owed = 0;  // blanks that a further cell needs before it
    for (size_t i = 0; i < row.size(); ++i) {
        const Cell cell = {CutToWidth(row[i].text, widths[i]), row[i].meant};
        if (!cell.text.empty()) {
            line += Blanks(owed) + Coloured(cell, terminal);
            owed = 0;
        }
        owed += widths[i] - DisplayWidth(cell.text) + between;
    }
    return line + "\n";
}

std::string Lines(const Row& row, const std::vector<size_t>& widths, const Terminal& terminal) {
    const std::vector<std::string> last = LinesOf(row.back().text, widths.back());
    std::string text;
    Row part = row;
    for (const std::string& line : last) {
        part.back().text = line;
        text += LineOf(part, widths, terminal);
        part.assign(row.size(), Cell{});
        part.back().meant = row.back().meant;
    }
    return text;
}

}  // namespace

std::string Coloured(const Cell& cell, const Terminal& terminal) {
    const auto colour = std::ranges::find(colours, cell.meant, &Colour::meant);
    if (!terminal.showsColour || cell.text.empty() || colour == std::end(colours)) return cell.text;
    return "\x1B[" + std::string(colour->sgr) + "m" + cell.text + "\x1B[0m";
}

size_t LeastWidth(const std::vector<TableColumn>& columns, const std::vector<Row>& rows) {
    return Whole(LeastWidths(columns, WidthsOf(columns, rows)));
}

std::string FittedTable(const std::vector<TableColumn>& columns, std::vector<Row> rows,
                        const Terminal& terminal) {
    Row titles;
    for (const TableColumn& column : columns)
        titles.push_back({column.title});
    rows.insert(rows.begin(), titles);
    for (Row& row : rows) {
        for (Cell& cell : row)
            cell.text = Printable(cell.text);
    }
    std::vector<size_t> widths = WidthsOf(columns, rows);
    std::vector<size_t> least = LeastWidths(columns, widths);
    if (columns.back().least != noLimit) least.back() = std::min(widths.back(), roomToWrap);
    Cut(least, terminal.columns, widths);
    Cut(LeastWidths(columns, widths), terminal.columns, widths);
    std::string text;
    for (const Row& row : rows)
        text += Lines(row, widths, terminal);
    return text;
}
