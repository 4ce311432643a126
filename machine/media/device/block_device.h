// The bytes of a disk, wherever they are stored.
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

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
    // Who else has it attached or locked, in words; empty if nobody is known to. Asked by those who only
    // read.
    virtual std::string OtherUser() const { return ""; }
    // What is wrong with it as a whole, so that it may be read but not changed; empty if nothing is.
    virtual std::string Flaw() const { return ""; }
    // All of the bytes, or false with errno set; false also for a range beyond the end.
    virtual bool Read(uint64_t offset, void* buffer, size_t length) const = 0;
    virtual bool Write(uint64_t offset, const void* bytes, size_t length) = 0;
    // False, with errno set, if the bytes written so far may not be on the medium.
    virtual bool Flush() = 0;

  protected:
    // Whether the range is on it; errno is set for one that is not.
    bool IsInside(uint64_t offset, size_t length) const {
        errno = EINVAL;
        return offset <= Size() && length <= Size() - offset;
    }
};

// The smallest unit of tables, and that of atomic writes.
inline constexpr uint64_t diskSectorSize = 512;

}  // namespace machine
