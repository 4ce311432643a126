#include "tools/kestova/pc/trace.h"

#include "base/utf.h"
#include "tools/kestova/common/text.h"

namespace {

std::string Line(const LogEntry& record) {
    return "log " + std::to_string(record.level) + "  " + OneLine(ToUtf8(record.Text()));
}

std::string Line(const machine::CallRecord& call) {
    const std::string arguments = Joined(call.arguments, ", ", WithNamedNul);
    return call.call + "(" + OneLine(arguments) + ") = " + call.result +
           (call.injected ? "  (injected)" : "");
}

}  // namespace

std::string TraceLine(const machine::JournalEntry& entry) {
    return std::visit([](const auto& happened) { return Line(happened); }, entry);
}
