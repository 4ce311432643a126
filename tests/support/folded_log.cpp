#include "tests/support/folded_log.h"

#include <algorithm>

#include "base/hexadecimal.h"
#include "tests/support/record_line.h"

namespace {

// A record, or a call: a function with what it logged.
struct Node {
    LogEntry record = {};
    std::string function = {};
    std::vector<Node> nodes = {};

    bool IsCall() const { return !function.empty(); }
};

// The functions that never log an end, and the class or function whose calls belong to them: any other
// function that logs is not theirs.
struct Endless {
    const char* function;
    std::vector<std::string> calls;
};

const Endless endless[] = {
    {"CVDSEx::QueryDisks", {}},
    {"CVDSEx::GetVdsDisk", {}},
    {"CVDSPartition::SelectDisk", {"CVDSEx::", "CVDSPartition::GetPhysicalDriveNumber"}},
    {"CVDSPartition::ClearActive", {"CVDSPartition::QueryPartitions"}},
};

bool MayCall(const std::string& caller, const std::string& function) {
    for (const Endless& row : endless) {
        if (row.function != caller) continue;
        return std::ranges::any_of(row.calls,
                                   [&](const std::string& call) { return function.starts_with(call); });
    }
    return true;
}

Node TreeOf(const std::vector<LogEntry>& records) {
    Node log;
    std::vector<Node*> open = {&log};
    const auto append = [&open](Node node) { return &open.back()->nodes.emplace_back(std::move(node)); };
    for (const LogEntry& record : records) {
        const std::string function = FunctionOf(record);
        if (function.empty()) {
            append({.record = record});
            continue;
        }
        while (open.back()->function != function && !MayCall(open.back()->function, function))
            open.pop_back();
        const auto mine =
            std::ranges::find_if(open, [&](const Node* node) { return node->function == function; });
        const bool isOpen = mine != open.end();
        if (SaysStart(record)) {
            open.erase(mine, open.end());
            open.push_back(append({.function = function}));
            append({.record = record});
            continue;
        }
        if (isOpen) open.erase(mine + 1, open.end());
        append({.record = record});
        if (isOpen && SaysEnd(record)) open.pop_back();
    }
    return log;
}

std::string ShapeOf(const Node& call) {
    std::string shape;
    for (const Node& node : call.nodes) {
        shape += node.IsCall() ? "(" + ShapeOf(node) + ")"
                               : std::to_string(node.record.level) + ValuesOf(node.record) + ";";
    }
    return shape;
}

// FNV-1a.
std::string ChecksumOf(const std::string& text) {
    uint32_t sum = 0x811C9DC5;
    for (const char unit : text)
        sum = (sum ^ static_cast<unsigned char>(unit)) * 0x01000193;
    return Hex(sum, 8, HexDigits::Lower).substr(2);
}

std::string FoldedLine(const Node& call, const std::string& name) {
    int level = LOG_LEVEL_TRACE;
    std::string result;
    for (const Node& node : call.nodes) {
        if (node.IsCall()) continue;
        level = std::min(level, node.record.level);
        result = ValuesOf(node.record);
    }
    return std::to_string(level) + " > " + call.function + " " + result + (result.empty() ? "" : " ") + name +
           "\n";
}

std::string TextOf(const Node& call, std::vector<LogBlock>& hidden);

std::string Hide(const Node& call, std::vector<LogBlock>& hidden) {
    const std::string name = "#" + ChecksumOf(ShapeOf(call));
    hidden.push_back({call.function, name, TextOf(call, hidden)});
    return FoldedLine(call, name);
}

std::string TextOf(const Node& call, std::vector<LogBlock>& hidden) {
    std::string text;
    for (const Node& node : call.nodes)
        text += node.IsCall() ? Hide(node, hidden) : LineOf(node.record);
    return text;
}

std::string FirstFunction(const std::vector<LogEntry>& records) {
    for (const LogEntry& record : records) {
        std::string function = FunctionOf(record);
        if (!function.empty()) return function;
    }
    return "";
}

}  // namespace

FoldedLog Fold(const std::vector<LogEntry>& records) {
    FoldedLog folded{.operation = {.function = FirstFunction(records)}};
    for (const Node& node : TreeOf(records).nodes) {
        if (!node.IsCall()) {
            folded.operation.text += LineOf(node.record);
        } else if (node.function == folded.operation.function) {
            folded.operation.text += TextOf(node, folded.hidden);
        } else {
            folded.operation.text += Hide(node, folded.hidden);
        }
    }
    return folded;
}
