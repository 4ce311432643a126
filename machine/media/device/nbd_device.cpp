#include "machine/media/device/nbd_device.h"

#include <libnbd.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "machine/media/device/disk_server.h"
#include "machine/media/device/file_device.h"
#include "machine/media/device/image_access.h"
#include "machine/media/device/in_use.h"
#include "machine/media/device/late_library.h"

namespace machine {

namespace {

// The functions in use of libnbd, which brings libraries for encryption and XML with it.
struct LibNbd {
    LateLibrary library{"libnbd.so.0", "libnbd0"};
    decltype(&nbd_create) create = library.Function("nbd_create");
    decltype(&nbd_connect_socket) connect_socket = library.Function("nbd_connect_socket");
    decltype(&nbd_get_size) get_size = library.Function("nbd_get_size");
    decltype(&nbd_pread) pread = library.Function("nbd_pread");
    decltype(&nbd_pwrite) pwrite = library.Function("nbd_pwrite");
    decltype(&nbd_flush) flush = library.Function("nbd_flush");
    decltype(&nbd_shutdown) shutdown = library.Function("nbd_shutdown");
    decltype(&nbd_close) close = library.Function("nbd_close");
    decltype(&nbd_get_error) get_error = library.Function("nbd_get_error");
    decltype(&nbd_get_errno) get_errno = library.Function("nbd_get_errno");
};

const LibNbd& Nbd() {
    static const LibNbd loaded;
    return loaded;
}

// The server accepts longer ones; this is long enough for its cost not to matter.
constexpr size_t longestRequest = size_t{1} << 20;

// Calls `transfer` (of nbd_pread's kind) until all bytes are through.
template <typename Transfer, typename Byte>
bool Through(Transfer transfer, nbd_handle* handle, uint64_t offset, Byte* bytes, size_t length) {
    while (length > 0) {
        const size_t count = std::min(length, longestRequest);
        if (transfer(handle, bytes, count, offset, 0) != 0) {
            errno = Nbd().get_errno() != 0 ? Nbd().get_errno() : EIO;
            return false;
        }
        bytes += count;
        offset += count;
        length -= count;
    }
    return true;
}

// "qemu-nbd: Failed to …: the reason" without the first part, which says nothing new.
std::string WithoutProgram(const std::string& words) {
    constexpr std::string_view opening = "qemu-nbd: Failed to blk_new_open '";
    const size_t end = words.find("': ");
    return words.starts_with(opening) && end != std::string::npos ? words.substr(end + 3) : words;
}

}  // namespace

void LoadNbd() {
    Nbd();
}

NbdDevice::NbdDevice(const std::string& path, const std::string& format, bool forWriting)
    : file_(OpenImage(path, false)) {
    if (forWriting) {
        RefuseIfInUse(file_.Number(), path);
        OpenImage(path, true);  // the permission
    } else {
        // Before the server is such a user itself.
        otherUser_ = KnownUser(file_.Number());
    }
    try {
        Connect(path, format, forWriting);
    } catch (...) {
        End();
        throw;
    }
}

NbdDevice::~NbdDevice() {
    Nbd().shutdown(handle_, 0);
    End();
    LastWords();
    pollfd end = {process_.Number(), POLLIN, 0};
    while (process_ && poll(&end, 1, -1) < 0 && errno == EINTR) {
    }
}

void NbdDevice::Connect(const std::string& path, const std::string& format, bool forWriting) {
    LoadNbd();  // before there is a server that a missing library would leave alone
    DiskServer server = StartDiskServer({path, format, forWriting});
    said_ = std::move(server.said);
    process_ = std::move(server.process);
    handle_ = Nbd().create();
    if (handle_ == nullptr) throw ImageError(path + ": cannot be opened: " + Nbd().get_error());
    // The library closes it.
    if (Nbd().connect_socket(handle_, server.connection.Release()) != 0) {
        const std::string problem = Nbd().get_error();
        End();  // so that the server does
        const std::string words = LastWords();
        if (words.find(" lock") != std::string::npos && !otherUser_.empty()) throw InUse(path, otherUser_);
        throw ImageError(path + ": " + (words.empty() ? problem : WithoutProgram(words)));
    }
    const int64_t size = Nbd().get_size(handle_);
    if (size <= 0 || static_cast<uint64_t>(size) % diskSectorSize != 0)
        throw ImageError(path + ": the disk in it is not a whole number of 512-byte sectors");
    size_ = static_cast<uint64_t>(size);
}

void NbdDevice::End() {
    if (handle_ != nullptr) Nbd().close(std::exchange(handle_, nullptr));
}

std::string NbdDevice::LastWords() {
    std::string words;
    std::array<char, 512> part;
    for (;;) {
        const ssize_t length = read(said_.Number(), part.data(), part.size());
        if (length < 0 && errno == EINTR) continue;
        if (length <= 0) break;
        words.append(part.data(), static_cast<size_t>(length));
    }
    while (words.ends_with('\n'))
        words.pop_back();
    return words;
}

bool NbdDevice::Read(uint64_t offset, void* buffer, size_t length) const {
    if (!IsInside(offset, length)) return false;
    // Of some formats the server reads whole sectors only.
    const size_t skipped = static_cast<size_t>(offset % diskSectorSize);
    const size_t whole = (skipped + length + diskSectorSize - 1) / diskSectorSize * diskSectorSize;
    if (whole == length) return Through(Nbd().pread, handle_, offset, static_cast<uint8_t*>(buffer), length);
    std::string sectors(whole, '\0');
    if (!Through(Nbd().pread, handle_, offset - skipped, sectors.data(), whole)) return false;
    sectors.copy(static_cast<char*>(buffer), length, skipped);
    return true;
}

bool NbdDevice::Write(uint64_t offset, const void* bytes, size_t length) {
    return IsInside(offset, length) &&
           Through(Nbd().pwrite, handle_, offset, static_cast<const uint8_t*>(bytes), length);
}

bool NbdDevice::Flush() {
    if (Nbd().flush(handle_, 0) == 0) return true;
    errno = Nbd().get_errno() != 0 ? Nbd().get_errno() : EIO;
    return false;
}

}  // namespace machine
