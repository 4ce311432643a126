#include "tests/machine/media/hive_log_builder.h"

#include "machine/media/device/little_endian.h"

namespace machine {

namespace {

constexpr size_t sector = 512;
constexpr size_t page = 4096;

void Append(std::string& bytes, uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(number >> shift & 0xFF);
}

void PadTo(size_t multiple, std::string& bytes) {
    bytes.resize((bytes.size() + multiple - 1) / multiple * multiple);
}

uint32_t TurnedLeft(uint32_t number, int bits) {
    return number << bits | number >> (32 - bits);
}

std::string LogHeader(const std::string& hive, uint32_t type) {
    std::string header = hive.substr(0, sector);
    PutLe32(header, 28, type);
    Number(header, Le32(hive, 8), Le32(hive, 8));
    return header;
}

}  // namespace

uint64_t LogHash(const std::string& bytes) {
    std::string padded = bytes + '\x80';
    PadTo(4, padded);
    padded.append(4, '\0');
    uint32_t s0 = 0x7A4E55C5;
    uint32_t s1 = 0x82EF4D88;
    for (size_t at = 0; at < padded.size(); at += 4) {
        s0 += Le32(padded, at);
        s1 ^= s0;
        s0 = TurnedLeft(s0, 20) + s1;
        s1 = TurnedLeft(s1, 9) ^ s0;
        s0 = TurnedLeft(s0, 27) + s1;
        s1 = TurnedLeft(s1, 19);
    }
    return uint64_t{s1} << 32 | s0;
}

void Number(std::string& hive, uint32_t begun, uint32_t completed) {
    PutLe32(hive, 4, begun);
    PutLe32(hive, 8, completed);
    uint32_t sum = 0;
    for (size_t at = 0; at < 508; at += 4)
        sum ^= Le32(hive, at);
    PutLe32(hive, 508, sum);
}

std::string BytesOf(const LogEntry& entry) {
    std::string body;
    for (const LogPage& one : entry.pages) {
        Append(body, one.offset);
        Append(body, static_cast<uint32_t>(one.bytes.size()));
    }
    for (const LogPage& one : entry.pages)
        body += one.bytes;
    body.resize((40 + body.size() + sector - 1) / sector * sector - 40);
    std::string bytes = "HvLE";
    Append(bytes, static_cast<uint32_t>(40 + body.size()));
    Append(bytes, 0);
    Append(bytes, entry.number);
    Append(bytes, entry.binsSize);
    Append(bytes, static_cast<uint32_t>(entry.pages.size()));
    AppendLe64(bytes, LogHash(body));
    AppendLe64(bytes, LogHash(bytes));
    return bytes + body;
}

LogEntry Difference(uint32_t number, const std::string& before, const std::string& after) {
    LogEntry entry = {number, Le32(after, 40)};
    for (size_t at = page; at < after.size(); at += page) {
        if (before.size() < at + page || before.compare(at, page, after, at, page) != 0)
            entry.pages.push_back({static_cast<uint32_t>(at - page), after.substr(at, page)});
    }
    return entry;
}

std::string LogOf(const std::string& hive, const std::vector<std::string>& entries) {
    std::string log = LogHeader(hive, 6);
    for (const std::string& entry : entries)
        log += entry;
    return log;
}

std::string OldLogOf(const std::string& before, const std::string& after) {
    std::string log = LogHeader(after, 1) + "DIRT";
    std::string pages;
    for (size_t at = page; at < after.size(); at += page) {
        const bool isChanged = before.size() < at + page || before.compare(at, page, after, at, page) != 0;
        log += isChanged ? '\xFF' : '\0';  // for eight sectors
        if (isChanged) pages += after.substr(at, page);
    }
    PadTo(sector, log);
    return log + pages;
}

}  // namespace machine
