#include "tools/kestova/picture/html_text.h"

#include "tools/kestova/common/text.h"

std::string HtmlText(std::string_view text) {
    std::string html;
    for (const char unit : Printable(text)) {
        switch (unit) {
            case '&':
                html += "&amp;";
                break;
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            case '"':
                html += "&quot;";
                break;
            case '\'':
                html += "&#39;";
                break;
            default:
                html += unit;
        }
    }
    return html;
}
