// Transaction logs of registry hives, written from their published description.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace machine {

// The hash of a log's entries.
uint64_t LogHash(const std::string& bytes);

// Sets the sequence numbers in a header, and its checksum.
void Number(std::string& hive, uint32_t begun, uint32_t completed);

struct LogPage {
    uint32_t offset;  // from the first bin
    std::string bytes;
};

struct LogEntry {
    uint32_t number = 0;
    uint32_t binsSize = 0;
    std::vector<LogPage> pages = {};
};

std::string BytesOf(const LogEntry& entry);

// The pages of 4096 bytes in which a hive differs from an earlier state of it.
LogEntry Difference(uint32_t number, const std::string& before, const std::string& after);

// A log of Windows 8.1 and later for the hive, with these entries.
std::string LogOf(const std::string& hive, const std::vector<std::string>& entries);

// A log of Windows 8 and earlier, with the pages in which the hive differs.
std::string OldLogOf(const std::string& before, const std::string& after);

}  // namespace machine
