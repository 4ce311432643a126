#include "tools/kestova/picture/status_text.h"

#include <algorithm>

#include "tools/kestova/picture/columns.h"

namespace {

std::string WindowsText(const std::optional<WindowsPlace>& windows) {
    if (!windows) return "not found";
    return LetterText(windows->letter) + ": disk " + std::to_string(windows->disk) + ", partition " +
           std::to_string(windows->partition);
}

std::string EncryptedText(const std::optional<std::string>& letters) {
    return letters == "" ? "none" : TextOr(letters, "BitLocker cannot be asked");
}

const char* NoActivePartition(const StatusReport& status) {
    if (!status.internalDisk) return "-";
    return status.isAllRead ? "none" : "unknown";
}

std::string RecordText(const std::optional<RecordReport>& record) {
    return record ? record->words : "-";
}

// --- the disks ---

bool HasName(const DiskReport& disk) {
    return std::ranges::any_of(disk.partitions,
                               [](const auto& partition) { return !partition.gptName.value_or("").empty(); });
}

bool HasOtherSlots(const DiskReport& disk) {
    return std::ranges::any_of(disk.partitions, [](const PartitionReport& partition) {
        return partition.slot && *partition.slot != partition.number;
    });
}

bool SaysSomething(const Column& column, const DiskReport& disk) {
    if (column.name == "name") return HasName(disk);
    if (column.name == "slot") return HasOtherSlots(disk);
    return true;
}

using Chosen = std::vector<const Column*>;

std::vector<TableColumn> LooksOf(const Chosen& columns) {
    std::vector<TableColumn> looks;
    for (const Column* const column : columns)
        looks.push_back(column->look);
    return looks;
}

// Without the column that says so nothing would show that space is free; then it is left out.
std::vector<std::vector<Cell>> RowsOf(const DiskReport& disk, const Chosen& columns, bool inBytes) {
    const bool showsFree = std::ranges::count(columns, "type", &Column::name) != 0;
    std::vector<std::vector<Cell>> rows;
    for (const Piece& piece : PiecesOf(disk)) {
        if (piece.partition != nullptr || showsFree) rows.push_back(CellsOf(piece, columns, inBytes));
    }
    return rows;
}

// In this order, where a terminal is too narrow.
constexpr const char* droppedFirst[] = {"hide",   "filesystem", "name",   "start", "label",
                                        "letter", "size",       "active", "slot"};

// Without --columns, those that say something; where the terminal is too narrow, fewer.
Chosen ColumnsFor(const DiskReport& disk, const StatusLook& look) {
    if (!look.columns.empty()) return ColumnsOf(look.columns);
    Chosen chosen;
    for (const Column& column : Columns()) {
        if (column.isUsual && SaysSomething(column, disk)) chosen.push_back(&column);
    }
    const auto fits = [&] {
        return LeastWidth(LooksOf(chosen), RowsOf(disk, chosen, look.inBytes)) <= look.terminal.columns;
    };
    for (const char* const name : droppedFirst) {
        if (fits()) break;
        std::erase_if(chosen, [&](const Column* column) { return column->name == name; });
    }
    return chosen;
}

std::string DiskText(const StatusReport& status, const DiskReport& disk, const StatusLook& look) {
    const Cell name = {"Disk " + std::to_string(disk.number),
                       status.internalDisk == disk.number ? Meant::Chosen : Meant::Plain};
    const std::string line = ": " + Printable(DiskWords(disk, look.inBytes)) + "; " + InternalWords(disk);
    std::string text = Coloured(name, look.terminal);
    const std::string wrapped = Wrapped(name.text + line, look.terminal.columns);
    text += wrapped.substr(name.text.size());
    const Chosen columns = ColumnsFor(disk, look);
    const auto rows = RowsOf(disk, columns, look.inBytes);
    return rows.empty() ? text : text + FittedTable(LooksOf(columns), rows, look.terminal);
}

}  // namespace

std::vector<std::vector<std::string>> HeadRows(const StatusReport& status) {
    return {{"Firmware", status.firmware},
            {"Running system", status.system},
            {"Windows directory", TextOr(status.windowsDirectory, "unknown")},
            {"Internal disk", TextOr(status.internalDisk, "unknown")},
            {"Partition style", TextOr(status.style, "-")},
            {"Active partition", TextOr(status.activePartition, NoActivePartition(status))},
            {"Layout", status.layoutName},
            {"Installed Windows", WindowsText(status.windows)},
            {"Encrypted volumes", EncryptedText(status.encryptedVolumes)},
            {"Recovery disc", TextOr(status.recoveryDisc, "none")},
            {"Recovery stick", TextOr(status.recoveryStick, "none")},
            {"Cache partition", status.cachePartition ? "yes" : "no"},
            {"Record", RecordText(status.record)}};
}

std::string DiskWords(const DiskReport& disk, bool inBytes) {
    std::string words = disk.size ? SizeWords(*disk.size, inBytes) : "of unknown size";
    if (disk.sectorSize && *disk.sectorSize != 512)
        words += " in sectors of " + std::to_string(*disk.sectorSize) + " bytes";
    words += ", " + (disk.style == "none" ? "no partition table" : TextOr(disk.style, "unknown style"));
    if (disk.bus) words += ", " + *disk.bus;
    if (disk.model) words += ", " + *disk.model;
    if (disk.serial) words += ", serial number " + *disk.serial;
    return words;
}

std::string InternalWords(const DiskReport& disk) {
    if (!disk.isInternal) return disk.reason;
    return (*disk.isInternal ? "internal: " : "not internal: ") + disk.reason;
}

std::string StatusText(const StatusReport& status, const StatusLook& look) {
    std::string text = look.tablesOnly ? "" : Table(HeadRows(status), "", look.terminal.columns);
    for (const DiskReport& disk : status.disks)
        text += (text.empty() ? "" : "\n") + DiskText(status, disk, look);
    return text;
}
