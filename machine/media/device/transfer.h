// Reading and writing files to the end of the range.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace machine {

// Calls `transfer` (pread, pwrite) until all bytes are through. False, with errno set, if that fails.
template <typename Transfer, typename Byte>
bool Through(Transfer transfer, int descriptor, uint64_t offset, Byte* bytes, size_t length) {
    while (length > 0) {
        const ssize_t done = transfer(descriptor, bytes, length, static_cast<off_t>(offset));
        if (done < 0 && errno == EINTR) continue;
        if (done == 0) errno = EIO;
        if (done <= 0) return false;
        bytes += done;
        offset += static_cast<uint64_t>(done);
        length -= static_cast<size_t>(done);
    }
    return true;
}

// Writes at the file's position. False, with errno set, if that fails.
inline bool WriteAll(int descriptor, std::string_view bytes) {
    const auto next = [](int file, const char* from, size_t length, off_t) {
        return write(file, from, length);
    };
    return Through(next, descriptor, 0, bytes.data(), bytes.size());
}

}  // namespace machine
