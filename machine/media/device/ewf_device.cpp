#include "machine/media/device/ewf_device.h"

#include <array>
#include <cerrno>

#include "machine/media/device/image_access.h"
#include "machine/media/device/late_library.h"

namespace machine {

namespace {

// The functions in use of libewf.
struct LibEwf {
    LateLibrary library{"libewf.so.2", "libewf2"};
    decltype(&libewf_glob) glob = library.Function("libewf_glob");
    decltype(&libewf_glob_free) glob_free = library.Function("libewf_glob_free");
    decltype(&libewf_get_access_flags_read) get_access_flags_read =
        library.Function("libewf_get_access_flags_read");
    decltype(&libewf_handle_initialize) handle_initialize = library.Function("libewf_handle_initialize");
    decltype(&libewf_handle_open) handle_open = library.Function("libewf_handle_open");
    decltype(&libewf_handle_segment_files_corrupted) handle_segment_files_corrupted =
        library.Function("libewf_handle_segment_files_corrupted");
    decltype(&libewf_handle_get_media_size) handle_get_media_size =
        library.Function("libewf_handle_get_media_size");
    decltype(&libewf_handle_read_random) handle_read_random = library.Function("libewf_handle_read_random");
    decltype(&libewf_handle_free) handle_free = library.Function("libewf_handle_free");
};

const LibEwf& Ewf() {
    static const LibEwf loaded;
    return loaded;
}

// The names of all segments that are there.
class Segments {
  public:
    explicit Segments(const std::string& path) {
        Ewf().glob(path.c_str(), path.size(), LIBEWF_FORMAT_UNKNOWN, &names_, &count_, nullptr);
    }
    ~Segments() {
        if (names_ != nullptr) Ewf().glob_free(names_, count_, nullptr);
    }
    Segments(const Segments&) = delete;
    Segments& operator=(const Segments&) = delete;

    char** Names() const { return names_; }
    int Count() const { return count_; }

  private:
    char** names_ = nullptr;
    int count_ = 0;
};

}  // namespace

void LoadEwf() {
    Ewf();
}

void EwfDevice::Freeing::operator()(libewf_handle_t* handle) const {
    Ewf().handle_free(&handle, nullptr);
}

EwfDevice::EwfDevice(const std::string& path) {
    const Segments segments(path);
    if (segments.Count() == 0)
        throw ImageError(path +
                         ": an E01 image whose name does not end as that of a first segment does, in .E01");
    libewf_handle_t* handle = nullptr;
    const bool isMade = Ewf().handle_initialize(&handle, nullptr) == 1;
    handle_.reset(handle);
    size64_t size = 0;
    if (!isMade ||
        Ewf().handle_open(handle, segments.Names(), segments.Count(), Ewf().get_access_flags_read(),
                          nullptr) != 1 ||
        Ewf().handle_segment_files_corrupted(handle, nullptr) != 0 ||
        Ewf().handle_get_media_size(handle, &size, nullptr) != 1) {
        throw ImageError(path + ": an E01 image of which a segment is missing or damaged");
    }
    if (size == 0 || size % diskSectorSize != 0)
        throw ImageError(path + ": the disk in it is not a whole number of 512-byte sectors");
    size_ = size;
}

bool EwfDevice::Read(uint64_t offset, void* buffer, size_t length) const {
    if (!IsInside(offset, length)) return false;
    auto* bytes = static_cast<uint8_t*>(buffer);
    while (length > 0) {
        const ssize_t done =
            Ewf().handle_read_random(handle_.get(), bytes, length, static_cast<off64_t>(offset), nullptr);
        errno = EIO;
        if (done <= 0) return false;
        bytes += done;
        offset += static_cast<uint64_t>(done);
        length -= static_cast<size_t>(done);
    }
    return true;
}

bool EwfDevice::Write(uint64_t, const void*, size_t) {
    errno = EROFS;
    return false;
}

}  // namespace machine
