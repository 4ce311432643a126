#include "tools/kestova/picture/columns.h"

#include <algorithm>
#include <sstream>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/pc/disk_facts.h"

namespace {

constexpr size_t whole = noLimit;
constexpr const char* none = "-";

std::string NumberText(const std::optional<int>& number) {
    return number ? std::to_string(*number) : none;
}

std::string TextOr(const std::optional<std::string>& text) {
    return text && !text->empty() ? *text : none;
}

Cell NumberCell(const PartitionReport& partition, bool) {
    return {std::to_string(partition.number)};
}
Cell SlotCell(const PartitionReport& partition, bool) {
    return {NumberText(partition.slot)};
}
Cell StartCell(const PartitionReport& partition, bool inBytes) {
    return {SizeWords(partition.offset, inBytes)};
}
Cell SizeCell(const PartitionReport& partition, bool inBytes) {
    return {SizeWords(partition.size, inBytes)};
}
Cell TypeCell(const PartitionReport& partition, bool) {
    return {partition.typeName};
}
Cell NameCell(const PartitionReport& partition, bool) {
    return {TextOr(partition.gptName)};
}
Cell ActiveCell(const PartitionReport& partition, bool) {
    return partition.active ? Cell{"active", Meant::Good} : Cell{none};
}
Cell HiddenCell(const PartitionReport& partition, bool) {
    return {partition.hidden ? "hidden" : none};
}
Cell LetterCell(const PartitionReport& partition, bool) {
    return {partition.letter ? LetterText(*partition.letter) : none};
}
Cell LabelCell(const PartitionReport& partition, bool) {
    return {TextOr(partition.label)};
}
Cell FileSystemCell(const PartitionReport& partition, bool) {
    return {TextOr(partition.fileSystem)};
}
Cell ConditionCell(const PartitionReport& partition, bool) {
    if (!partition.condition) return {none};
    return {*partition.condition,
            *partition.condition == volume_condition::clean ? Meant::Plain : Meant::Barring};
}
Cell HideCell(const PartitionReport& partition, bool) {
    return {partition.hide ? "hide" : none};
}

// "Windows RE: type and contents"; "-" without a role.
Cell RoleCell(const PartitionReport& partition, bool) {
    std::string text;
    for (const Role& role : partition.roles)
        text += (text.empty() ? "" : "; ") + std::string(role.role) + ": " + role.reason;
    return {text.empty() ? none : text};
}

std::string GapStart(const Gap& gap, bool inBytes) {
    return SizeWords(gap.offset, inBytes);
}
std::string GapSize(const Gap& gap, bool inBytes) {
    return SizeWords(gap.size, inBytes);
}
std::string GapWord(const Gap&, bool) {
    return "free";
}

std::string Names() {
    std::string names;
    for (const Column& column : Columns())
        names += (names.empty() ? "" : ", ") + std::string(column.name);
    return names;
}

}  // namespace

const std::vector<Column>& Columns() {
    static const std::vector<Column> columns = {
        {"number", {"#", whole}, "as Windows counts partitions", true, false, NumberCell, nullptr},
        {"slot", {"Slot", whole}, "as the table counts its entries", true, false, SlotCell, nullptr},
        {"start", {"Start", whole}, "from the beginning of the disk", true, true, StartCell, GapStart},
        {"size", {"Size", whole}, "", true, false, SizeCell, GapSize},
        {"type", {"Type", 8}, "in words", true, false, TypeCell, GapWord},
        {"name", {"Name", 6}, "in the entry of a GUID partition table", true, true, NameCell, nullptr},
        {"active", {"Active", 6}, "an MBR's flag", true, false, ActiveCell, nullptr},
        {"hidden", {"Hidden", 6}, "by the type or attribute of the entry", false, false, HiddenCell, nullptr},
        {"letter", {"Letter", 6}, "in the running system", true, false, LetterCell, nullptr},
        {"label", {"Label", 6}, "of the volume", true, false, LabelCell, nullptr},
        {"filesystem", {"File system", 5}, "of the volume", true, true, FileSystemCell, nullptr},
        {"condition",
         {"Condition", 6},
         "in which Windows left the volume",
         true,
         false,
         ConditionCell,
         nullptr},
        {"hide", {"Hide", 4}, "whether the maker hides it", true, true, HideCell, nullptr},
        {"role",
         {"Role: reason", 10},
         "what it is for, and how that was recognised",
         true,
         false,
         RoleCell,
         nullptr},
    };
    return columns;
}

std::vector<const Column*> ColumnsOf(const std::string& list) {
    std::vector<const Column*> chosen;
    std::istringstream names(list);
    for (std::string name; std::getline(names, name, ',');) {
        const auto column = std::ranges::find(Columns(), name, &Column::name);
        if (column == Columns().end())
            throw WrongUse("--columns: there is no column '" + name + "'; there are " + Names());
        chosen.push_back(&*column);
    }
    if (chosen.empty()) throw WrongUse("--columns: name one of " + Names());
    return chosen;
}

std::string SizeWords(int64_t bytes, bool inBytes) {
    return inBytes ? std::to_string(bytes) : SizeText(static_cast<uint64_t>(bytes));
}

std::string ColumnsHelp(size_t columns) {
    std::vector<std::vector<std::string>> rows;
    for (const Column& column : Columns())
        rows.push_back({std::string(column.name), std::string(column.words)});
    return Table(rows, "  ", columns);
}
