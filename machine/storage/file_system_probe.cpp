#include "machine/storage/file_system_probe.h"

#include <blkid/blkid.h>

#include <new>
#include <string_view>

namespace machine {

namespace {

// The file systems that Windows recognises: libblkid's name and, where one name covers several, its version.
struct KnownFileSystem {
    std::string_view type;
    std::string_view version;
    const char* kind;
};

constexpr KnownFileSystem knownFileSystems[] = {
    {"ntfs", "", "NTFS"},           {"vfat", "FAT32", "FAT32"}, {"vfat", "FAT16", "FAT"},
    {"vfat", "FAT12", "FAT"},       {"exfat", "", "exFAT"},     {"ReFS", "", "ReFS"},
    {"BitLocker", "", "BitLocker"},
};

}  // namespace

FileSystemProbe::FileSystemProbe(const ImageFile& image) : image_(image), probe_(blkid_new_probe()) {
    if (!probe_) throw std::bad_alloc();
    char ntfs[] = "ntfs", vfat[] = "vfat", exfat[] = "exfat", refs[] = "ReFS", bitLocker[] = "BitLocker";
    char* types[] = {ntfs, vfat, exfat, refs, bitLocker, nullptr};
    blkid_probe_enable_superblocks(probe_, 1);
    blkid_probe_set_superblocks_flags(probe_, BLKID_SUBLKS_TYPE | BLKID_SUBLKS_LABEL | BLKID_SUBLKS_VERSION);
    blkid_probe_filter_superblocks_type(probe_, BLKID_FLTR_ONLYIN, types);
}

FileSystemProbe::~FileSystemProbe() {
    blkid_free_probe(probe_);
}

std::optional<FileSystem> FileSystemProbe::Identify(uint64_t offset, uint64_t size) {
    if (blkid_probe_set_device(probe_, image_.Descriptor(), static_cast<blkid_loff_t>(offset),
                               static_cast<blkid_loff_t>(size)) != 0 ||
        blkid_do_safeprobe(probe_) != 0) {
        return std::nullopt;
    }
    const std::string type = Value("TYPE");
    const std::string version = Value("VERSION");
    for (const KnownFileSystem& known : knownFileSystems) {
        if (known.type == type && (known.version.empty() || known.version == version))
            return FileSystem{known.kind, Value("LABEL")};
    }
    return std::nullopt;
}

std::string FileSystemProbe::Value(const char* name) const {
    const char* text = nullptr;
    return blkid_probe_lookup_value(probe_, name, &text, nullptr) == 0 && text ? text : "";
}

}  // namespace machine
