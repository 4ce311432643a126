// Where changes of a disk's partition table go, when it is not only in the description.
#pragma once

#include <cstdint>

namespace machine {

// Both answer 0, or the platform's error code, and have changed nothing then: 19 when the medium is open for
// reading only, 87 when there is no such partition or it cannot have that value (a flag or an MBR type on a
// GPT disk, type 0, to or from an extended partition), 1117 when the medium cannot be read or written. The
// bytes are on the medium when they answer.
class PartitionTable {
  public:
    virtual ~PartitionTable() = default;
    virtual uint32_t SetActive(uint64_t partitionOffset, bool active) = 0;
    virtual uint32_t SetMbrType(uint64_t partitionOffset, uint8_t type) = 0;
};

}  // namespace machine
