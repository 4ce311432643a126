// Parts of texts in Markdown.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// No character of the text means anything: a backslash takes the meaning of punctuation, and after a space
// without width an "@all" names nobody. No text begins a line.
std::string MarkdownText(std::string_view text);

// A row of a table, and that of its titles with the rule below.
std::string MarkdownRow(const std::vector<std::string>& cells);
std::string MarkdownTitleRow(const std::vector<std::string>& titles);
