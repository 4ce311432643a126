#include "tools/kestova/picture/markdown_parts.h"

#include "tools/kestova/common/text.h"

std::string MarkdownText(std::string_view text) {
    std::string literal;
    for (const char unit : Printable(text)) {
        if (std::string_view("\\`*_[]<>|~&").find(unit) != std::string_view::npos) literal += '\\';
        literal += unit;
        if (unit == '@') literal += "\u200B";
    }
    return literal;
}

std::string MarkdownRow(const std::vector<std::string>& cells) {
    std::string row = "|";
    for (const std::string& cell : cells)
        row += " " + MarkdownText(cell) + " |";
    return row + "\n";
}

std::string MarkdownTitleRow(const std::vector<std::string>& titles) {
    std::string rule = "|";
    for (size_t i = 0; i < titles.size(); ++i)
        rule += "---|";
    return MarkdownRow(titles) + rule + "\n";
}
