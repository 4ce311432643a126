#include "machine/media/hive/hive_log.h"

#include <algorithm>
#include <bit>
#include <map>
#include <string_view>

#include "machine/media/hive/hive_layout.h"
#include "machine/media/hive/marvin32.h"

namespace machine {

namespace {

// The header of a log is the first sector of the hive's, with a type of its own.
constexpr size_t fileType = 28;
constexpr uint32_t entriesType = 6;
constexpr uint32_t pagesType = 1;
constexpr size_t logSector = 512;

bool IsSound(const std::string& log) {
    return log.size() >= logSector && log.starts_with("regf") && Le32(log, hiveSum) == HeaderSum(log) &&
           IsClosed(log);
}

// Closes the hive, which has received all changes up to that number.
void Close(std::string& hive, uint32_t number, uint32_t binsSize) {
    PutLe32(hive, hiveBegun, number);
    PutLe32(hive, hiveCompleted, number);
    PutLe32(hive, hiveBinsSize, binsSize);
    PutLe32(hive, hiveSum, HeaderSum(hive));
}

// A hive does not grow by more than its logs hold.
uint64_t MostBytes(const std::string& hive, const std::vector<std::string>& logs) {
    uint64_t most = hive.size();
    for (const std::string& log : logs)
        most += log.size();
    return most;
}

void Enlarge(std::string& hive, uint32_t binsSize) {
    hive.resize(std::max(hive.size(), hiveBins + binsSize));
}

// --- logs with entries: of Windows 8.1 and later ---

// What precedes an entry's list of pages, which are offset and size; the pages themselves follow the list.
constexpr size_t entryHeader = 40;
constexpr size_t hashedHeader = 32;
constexpr size_t reference = 8;

struct Entry {
    uint32_t binsSize = 0;
    std::string_view references = {};
    std::string_view pages = {};
    std::string flaw = {};  // why it must not be applied
};

bool IsIntact(std::string_view entry) {
    return Le64(entry, 24) == Marvin32(entry.substr(entryHeader)) &&
           Le64(entry, 32) == Marvin32(entry.substr(0, hashedHeader));
}

// Reads the entry; `bytes` begin with it.
Entry EntryAt(std::string_view bytes, uint64_t most) {
    const std::string name = "entry " + std::to_string(Le32(bytes, 12));
    const std::string damaged = name + " is damaged";
    const uint32_t size = Le32(bytes, 4);
    if (size == 0 || size % logSector != 0 || size > bytes.size() || !IsIntact(bytes.substr(0, size)))
        return {.flaw = damaged};
    Entry entry;
    entry.binsSize = Le32(bytes, 16);
    const size_t list = reference * size_t{Le32(bytes, 20)};
    if (entry.binsSize % hivePage != 0 || list > size - entryHeader) return {.flaw = damaged};
    if (hiveBins + entry.binsSize > most) return {.flaw = name + " enlarges it by more than the logs hold"};
    entry.references = bytes.substr(entryHeader, list);
    entry.pages = bytes.substr(entryHeader + list, size - entryHeader - list);
    uint64_t held = 0;
    for (size_t at = 0; at < list; at += reference) {
        const uint64_t end = uint64_t{Le32(entry.references, at)} + Le32(entry.references, at + 4);
        if (end > entry.binsSize) return {.flaw = name + " changes bytes behind its end"};
        held += Le32(entry.references, at + 4);
    }
    if (held > entry.pages.size()) return {.flaw = damaged};
    return entry;
}

// Adds the entries of a log by their numbers, up to one with a flaw. What does not continue them is left from
// an earlier use of the file.
void AddEntries(std::string_view log, uint64_t most, std::map<uint32_t, Entry>& entries) {
    uint32_t number = Le32(log, logSector + 12);
    for (size_t at = logSector; log.substr(at).starts_with("HvLE") && Le32(log, at + 12) == number;
         at += Le32(log, at + 4), ++number) {
        const Entry entry = EntryAt(log.substr(at), most);
        Entry& kept = entries.try_emplace(number, entry).first->second;
        if (!kept.flaw.empty()) kept = entry;
        if (!entry.flaw.empty()) return;
    }
}

void Apply(const Entry& entry, std::string& hive) {
    Enlarge(hive, entry.binsSize);
    std::string_view pages = entry.pages;
    for (size_t at = 0; at < entry.references.size(); at += reference) {
        const size_t size = Le32(entry.references, at + 4);
        hive.replace(hiveBins + Le32(entry.references, at), size, pages.substr(0, size));
        pages.remove_prefix(size);
    }
}

HiveReplay ReplayEntries(std::string& hive, const std::map<uint32_t, Entry>& entries) {
    HiveReplay replay;
    for (uint32_t number = Le32(hive, hiveCompleted); entries.contains(number); ++number) {
        const Entry& entry = entries.at(number);
        replay.unapplied = entry.flaw;
        if (!replay.unapplied.empty()) break;
        Apply(entry, hive);
        Close(hive, number, entry.binsSize);
        replay.isApplied = true;
    }
    return replay;
}

// --- logs of whole pages: of Windows 8 and earlier ---

constexpr size_t bitmapPage = 512;  // of the hive, for each bit

bool IsWrittenFor(const std::string& hive, std::string_view log) {
    constexpr size_t time = 12;  // of the last change
    return Le64(log, time) == Le64(hive, time) && log.substr(logSector).starts_with("DIRT");
}

HiveReplay ReplayPages(std::string& hive, const std::string& log, uint64_t most) {
    const uint32_t binsSize = Le32(log, hiveBinsSize);
    const std::string_view bitmap = std::string_view(log).substr(logSector + 4, binsSize / bitmapPage / 8);
    const size_t pages = (logSector + 4 + bitmap.size() + logSector - 1) / logSector * logSector;
    size_t count = 0;
    for (const char bits : bitmap)
        count += static_cast<size_t>(std::popcount(static_cast<uint8_t>(bits)));
    if (binsSize % hivePage != 0 || hiveBins + binsSize > most || pages + count * bitmapPage > log.size())
        return {.unapplied = "they are damaged"};
    Enlarge(hive, binsSize);
    size_t from = pages;
    for (size_t bit = 0; bit < bitmap.size() * 8; ++bit) {
        if ((Byte(bitmap, bit / 8) >> bit % 8 & 1) == 0) continue;
        hive.replace(hiveBins + bit * bitmapPage, bitmapPage, log, from, bitmapPage);
        from += bitmapPage;
    }
    Close(hive, Le32(hive, hiveBegun), binsSize);
    return {.isApplied = true};
}

}  // namespace

bool IsClosed(const std::string& hive) {
    return Le32(hive, hiveBegun) == Le32(hive, hiveCompleted);
}

HiveReplay ReplayLogs(std::string& hive, const std::vector<std::string>& logs) {
    const uint64_t most = MostBytes(hive, logs);
    std::map<uint32_t, Entry> entries;
    HiveReplay replay;
    bool areSound = false;
    for (const std::string& log : logs) {
        if (!IsSound(log)) continue;
        areSound = true;
        if (Le32(log, fileType) == entriesType) AddEntries(log, most, entries);
        if (Le32(log, fileType) == pagesType && IsWrittenFor(hive, log))
            replay = ReplayPages(hive, log, most);
        if (replay.isApplied) return replay;
    }
    if (replay.unapplied.empty()) replay = ReplayEntries(hive, entries);
    if (replay.isApplied || !replay.unapplied.empty()) return replay;
    const bool areNone = std::all_of(logs.begin(), logs.end(), [](const auto& log) { return log.empty(); });
    replay.unapplied = areNone    ? "there are none"
                       : areSound ? "they belong to another state of it"
                                  : "they are damaged";
    return replay;
}

}  // namespace machine
