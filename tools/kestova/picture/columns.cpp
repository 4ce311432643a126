#include "tools/kestova/picture/columns.h"

#include <algorithm>
#include <sstream>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/picture/type_words.h"

namespace {

constexpr size_t whole = noLimit;
constexpr const char* none = "-";

// An empty name is none.
std::string NameText(const std::optional<std::string>& name) {
    return name && !name->empty() ? *name : none;
}
Cell NumberCell(const PartitionReport& partition, bool) {
    return {std::to_string(partition.number)};
}
Cell SlotCell(const PartitionReport& partition, bool) {
    return {TextOr(partition.slot, none)};
}
Cell StartCell(const PartitionReport& partition, bool inBytes) {
    return {SizeWords(partition.offset, inBytes)};
}
Cell SizeCell(const PartitionReport& partition, bool inBytes) {
    return {SizeWords(partition.size, inBytes)};
}
Cell TypeCell(const PartitionReport& partition, bool) {
    return {TypeWords(partition)};
}
Cell NameCell(const PartitionReport& partition, bool) {
    return {NameText(partition.gptName)};
}
Cell ActiveCell(const PartitionReport& partition, bool) {
    return partition.active ? Cell{"active", Meant::Good} : Cell{none};
}
Cell HiddenCell(const PartitionReport& partition, bool) {
    return {partition.hidden ? "hidden" : none};
}
Cell LetterCell(const PartitionReport& partition, bool) {
    return {TextOr(partition.letter, none)};
}
Cell LabelCell(const PartitionReport& partition, bool) {
    return {NameText(partition.label)};
}
Cell FileSystemCell(const PartitionReport& partition, bool) {
    return {NameText(partition.fileSystem)};
}
Cell ConditionCell(const PartitionReport& partition, bool) {
    return {TextOr(partition.condition, none), IsBarring(partition) ? Meant::Barring : Meant::Plain};
}
Cell HideCell(const PartitionReport& partition, bool) {
    return {partition.hide ? "hide" : none};
}

// "Windows RE: type and contents"; "-" without a role.
Cell RoleCell(const PartitionReport& partition, bool) {
    if (partition.roles.empty()) return {none};
    return {Joined(partition.roles, "; ",
                   [](const Role& role) { return std::string(role.role) + ": " + role.reason; })};
}

std::string FreeStart(const Piece& piece, bool inBytes) {
    return SizeWords(piece.offset, inBytes);
}
std::string FreeSize(const Piece& piece, bool inBytes) {
    return SizeWords(piece.size, inBytes);
}
std::string FreeWord(const Piece&, bool) {
    return "free";
}

std::string Names() {
    return Joined(Columns(), ", ", &Column::name);
}

}  // namespace

const std::vector<Column>& Columns() {
    static const std::vector<Column> columns = {
        {"number", {"#", whole}, "as Windows counts partitions", true, NumberCell, nullptr},
        {"slot", {"Slot", whole}, "as the table counts its entries", true, SlotCell, nullptr},
        {"start", {"Start", whole}, "from the beginning of the disk", true, StartCell, FreeStart},
        {"size", {"Size", whole}, "", true, SizeCell, FreeSize},
        {"type", {"Type", 8}, "in words", true, TypeCell, FreeWord},
        {"name", {"Name", 6}, "in the entry of a GUID partition table", true, NameCell, nullptr},
        {"active", {"Active", 6}, "an MBR's flag", true, ActiveCell, nullptr},
        {"hidden", {"Hidden", 6}, "by the type or attribute of the entry", false, HiddenCell, nullptr},
        {"letter", {"Letter", 6}, "in the running system", true, LetterCell, nullptr},
        {"label", {"Label", 6}, "of the volume", true, LabelCell, nullptr},
        {"filesystem", {"File system", 5}, "of the volume", true, FileSystemCell, nullptr},
        {"condition", {"Condition", whole}, "in which Windows left the volume", true, ConditionCell, nullptr},
        {"hide", {"Hide", 4}, "whether the maker hides it", true, HideCell, nullptr},
        {"role",
         {"Role: reason", 10},
         "what it is for, and how that was recognised",
         true,
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

std::vector<Cell> CellsOf(const Piece& piece, const std::vector<const Column*>& columns, bool inBytes) {
    std::vector<Cell> cells;
    for (const Column* const column : columns) {
        if (piece.partition != nullptr)
            cells.push_back(column->cell(*piece.partition, inBytes));
        else
            cells.push_back({column->free != nullptr ? column->free(piece, inBytes) : ""});
    }
    return cells;
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
