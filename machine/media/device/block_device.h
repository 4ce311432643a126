// The bytes of a disk, wherever they are stored.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace machine {

class BlockDevice {
  public:
    BlockDevice() = default;
    virtual ~BlockDevice() = default;
    BlockDevice(const BlockDevice&) = delete;
    BlockDevice& operator=(const BlockDevice&) = delete;

    virtual uint64_t Size() const = 0;  // bytes, whole sectors of 512 bytes
    // The size of the sectors that a table on it counts in; nothing for a file, which does not know it.
    virtual std::optional<uint32_t> SectorSize() const { return std::nullopt; }
    // All of the bytes, or false with errno set; false also for a range beyond the end.
    virtual bool Read(uint64_t offset, void* buffer, size_t length) const = 0;
    virtual bool Write(uint64_t offset, const void* bytes, size_t length) = 0;
    // False, with errno set, if the bytes written so far may not be on the medium.
    virtual bool Flush() = 0;
};

// The smallest unit of tables, and that of atomic writes.
inline constexpr uint64_t diskSectorSize = 512;

}  // namespace machine
