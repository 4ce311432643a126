// The interface to a partition table on an image.
#pragma once

#include <cstdint>
#include <vector>

namespace machine {

// What a change of one active flag does to the disk's other flags.
enum class OtherFlags { Keep, Clear };

struct TableEntry {
    uint64_t offset = 0;  // bytes
    bool isActive = false;
    uint8_t type = 0;

    bool operator==(const TableEntry&) const = default;
};

// Changes return 0, or the platform's error code. 19: the medium is write-protected; 87: there is no such
// partition, or it cannot have that value (a flag or an MBR type on a GPT disk, type 0, to or from an
// extended partition); both change nothing. 1117: the medium cannot be read. After 1117 the change may have
// been made in part; call Entries() to find out.
class PartitionTable {
  public:
    virtual ~PartitionTable() = default;
    // One edit of the table and one write, so that two flags are never set in between. Clears the flags
    // that are set on the medium.
    virtual uint32_t SetActive(uint64_t partitionOffset, bool active, OtherFlags others) = 0;
    virtual uint32_t SetMbrType(uint64_t partitionOffset, uint8_t type) = 0;
    // The current entries of an MBR. Empty for GPT, and if the medium cannot be read.
    virtual std::vector<TableEntry> Entries() = 0;
};

}  // namespace machine
