#include "machine/media/volumes/file_system_probe.h"

#include <blkid/blkid.h>

#include <new>
#include <string_view>
#include <vector>

namespace machine {

namespace {

// The file systems that Windows recognises: libblkid's name and, where a name covers several, its version.
struct KnownFileSystem {
    MediumKind medium;
    const char* type;
    std::string_view version;
    const char* kind;
};

constexpr KnownFileSystem knownFileSystems[] = {
    {MediumKind::Disk, "ntfs", "", "NTFS"},           {MediumKind::Disk, "vfat", "FAT32", "FAT32"},
    {MediumKind::Disk, "vfat", "FAT16", "FAT"},       {MediumKind::Disk, "vfat", "FAT12", "FAT"},
    {MediumKind::Disk, "exfat", "", "exFAT"},         {MediumKind::Disk, "ReFS", "", "ReFS"},
    {MediumKind::Disk, "BitLocker", "", "BitLocker"}, {MediumKind::Disc, "udf", "", "UDF"},
    {MediumKind::Disc, "iso9660", "", "CDFS"},
};

}  // namespace

FileSystemProbe::FileSystemProbe(const ImageFile& image, MediumKind medium)
    : image_(image), probe_(blkid_new_probe()) {
    if (!probe_) throw std::bad_alloc();
    std::vector<std::string> names;
    for (const KnownFileSystem& known : knownFileSystems) {
        if (known.medium == medium) names.emplace_back(known.type);
    }
    std::vector<char*> types;
    for (std::string& name : names)
        types.push_back(name.data());
    types.push_back(nullptr);
    blkid_probe_enable_superblocks(probe_, 1);
    blkid_probe_set_superblocks_flags(probe_, BLKID_SUBLKS_TYPE | BLKID_SUBLKS_LABEL | BLKID_SUBLKS_VERSION);
    blkid_probe_filter_superblocks_type(probe_, BLKID_FLTR_ONLYIN, types.data());
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
