// Where changes of a disk's partition table go, when it is not only in the description.
#pragma once

#include <cstdint>
#include <vector>

namespace machine {

// What a change of the active flag does to the flags of the disk's other partitions.
enum class OtherFlags { Keep, Clear };

// What the table says of a partition that is no extended one.
struct TableEntry {
    uint64_t offset = 0;  // bytes
    bool isActive = false;
    uint8_t type = 0;

    bool operator==(const TableEntry&) const = default;
};

// The changes answer 0, and are on the medium then, or the platform's error code: 19 when the medium is open
// for reading only, 87 when there is no such partition or it cannot have that value (a flag or an MBR type on
// a GPT disk, type 0, to or from an extended partition), both having changed nothing; 1117 when the medium
// cannot be read or written. Then the change may have been made or not, which Entries tells.
class PartitionTable {
  public:
    virtual ~PartitionTable() = default;
    // One edit of the table and one write, so that no two flags are set in between. The flags to clear are
    // those on the medium.
    virtual uint32_t SetActive(uint64_t partitionOffset, bool active, OtherFlags others) = 0;
    virtual uint32_t SetMbrType(uint64_t partitionOffset, uint8_t type) = 0;
    // The entries of an MBR as they read now. Empty on GPT, when the medium cannot be read, and when changes
    // do not reach it, so that it would tell nothing of them.
    virtual std::vector<TableEntry> Entries() = 0;
};

}  // namespace machine
