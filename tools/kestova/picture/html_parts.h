// Parts of the pages that this program makes. Texts are any; "Html" in a name is for what is HTML already.
#pragma once

#include <string>
#include <vector>

// "<td class="bad">text</td>": the tag may have attributes.
std::string HtmlTagged(const std::string& tag, const std::string& text, const char* kind = "");

// A part with a heading; the id is for those who do not see it.
std::string HtmlSection(const std::string& id, const std::string& title, const std::string& content);

// A row of cells that are tagged, and the row of titles above.
std::string HtmlRow(const std::string& cells);
std::string HtmlTitleRow(const std::vector<std::string>& titles);

// The page, whole in itself: no script, nothing from elsewhere.
std::string HtmlPage(const std::string& heading, const std::string& making, const std::string& content);
