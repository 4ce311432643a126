// Where changes of a disk's partition table go, when it is not only in the description.
#pragma once

#include <cstdint>

namespace machine {

// Both answer 0, or the platform's error code, and have changed nothing then: 19 when the medium is open for
// reading only, 1117 when it cannot be written. The bytes are on the medium when they answer.
class PartitionTable {
  public:
    virtual ~PartitionTable() = default;
    virtual uint32_t SetActive(uint64_t partitionOffset, bool active) = 0;
    virtual uint32_t SetMbrType(uint64_t partitionOffset, uint8_t type) = 0;
};

}  // namespace machine
