#include "tools/kestova/command_line/page_format.h"

#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"

PageFormat PageFormatOf(const CommandLine& line) {
    if (line.format == "markdown") return PageFormat::Markdown;
    if (!line.format.empty() && line.format != "html")
        throw WrongUse("--format: " + UnknownWord("format", line.format, {"html", "markdown"}));
    if (line.output.empty())
        throw WrongUse(line.command + ": name the file with --output, or standard output with --output -");
    return PageFormat::Html;
}
