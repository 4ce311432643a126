// Pages of this program. Their own style follows the reader's light or dark, and prints.

#include "tools/kestova/picture/html_parts.h"

#include "tools/kestova/picture/html_text.h"

namespace {

constexpr const char* style = R"(
:root { color-scheme: light dark; --ink: #1b1f24; --paper: #ffffff; --line: #8c959f; --head: #eef1f4;
  --windows: #b6d4fe; --recovery: #b7e4c7; --other: #e2e3e5; --free: #ffffff; --bad: #a40e26; --good: #116329; }
@media (prefers-color-scheme: dark) {
  :root { --ink: #e6edf3; --paper: #14181d; --line: #7d8590; --head: #22272e;
    --windows: #1f4a80; --recovery: #1d5636; --other: #3b4048; --free: #14181d; --bad: #ff9492; --good: #7ee2a0; }
}
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 75rem; padding: 1rem; background: var(--paper); color: var(--ink);
  font: 1rem/1.45 system-ui, "DejaVu Sans", sans-serif; }
h1 { font-size: 1.5rem; } h2 { font-size: 1.15rem; margin-top: 2rem; }
table { border-collapse: collapse; font-size: .9rem; }
th, td { border: 1px solid var(--line); padding: .25rem .5rem; text-align: left; vertical-align: top; }
th { background: var(--head); } td { overflow-wrap: anywhere; }
.wide { overflow-x: auto; margin-top: .75rem; } .wide td { overflow-wrap: normal; white-space: nowrap; }
.wide td:last-child { white-space: normal; min-width: 12rem; }
.disk rect { stroke: var(--line); fill: var(--other); } .disk text { fill: var(--ink); font-size: .85rem; }
.disk .windows { fill: var(--windows); } .disk .recovery { fill: var(--recovery); }
.disk .free { fill: var(--free); stroke-dasharray: 4; } .disk .active { fill: var(--good); stroke: none; }
.bad { color: var(--bad); font-weight: bold; } .good { color: var(--good); }
.log { font: .8rem/1.4 ui-monospace, "DejaVu Sans Mono", monospace; overflow-wrap: anywhere; padding-left: 3.5rem; }
@media print {
  :root { --ink: #000; --paper: #fff; --line: #555; --head: #eee; --windows: #ddd; --recovery: #eee; --other: #f6f6f6;
    --free: #fff; --bad: #000; --good: #000; }
  body { max-width: none; padding: 0; font-size: 10pt; } .wide { overflow: visible; }
  .wide table { font-size: 7pt; } .wide td { white-space: normal; } svg, tr { break-inside: avoid; }
  .disk rect { print-color-adjust: exact; }
}
)";

}  // namespace

std::string HtmlTagged(const std::string& tag, const std::string& text, const char* kind) {
    const std::string name = tag.substr(0, tag.find(' '));
    const std::string mark = *kind != '\0' ? std::string(" class=\"") + kind + "\"" : "";
    return "<" + tag + mark + ">" + HtmlText(text) + "</" + name + ">";
}

std::string HtmlSection(const std::string& id, const std::string& title, const std::string& content) {
    return "<section aria-labelledby=\"" + id + "\">\n<h2 id=\"" + id + "\">" + HtmlText(title) + "</h2>\n" +
           content + "</section>\n";
}

std::string HtmlRow(const std::string& cells) {
    return "<tr>" + cells + "</tr>\n";
}

std::string HtmlTitleRow(const std::vector<std::string>& titles) {
    std::string cells;
    for (const std::string& title : titles)
        cells += HtmlTagged("th scope=\"col\"", title);
    return "<thead>" + HtmlRow(cells) + "</thead>\n";
}

std::string HtmlPage(const std::string& heading, const std::string& making, const std::string& content) {
    return "<!DOCTYPE html>\n<!-- Kestova report -->\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n" +
           HtmlTagged("title", heading) + "\n<style>" + std::string(style) +
           "</style>\n</head>\n<body>\n<header>\n" + HtmlTagged("h1", heading) + "\n" +
           HtmlTagged("p", making) + "\n</header>\n<main>\n" + content + "</main>\n</body>\n</html>\n";
}
