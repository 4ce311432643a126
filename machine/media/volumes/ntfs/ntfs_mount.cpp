#include "machine/media/volumes/ntfs/ntfs_mount.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <new>

#include "machine/facts/store_path.h"
#include "machine/media/device/little_endian.h"
#include "machine/media/device/store_errors.h"
#include "machine/media/volumes/ntfs/ntfs_record.h"

namespace machine {

namespace {

struct SplitPath {
    std::string folder;
    std::string name;
};

SplitPath Split(const std::string& normalized) {
    const std::string folder = FolderOf(normalized);
    return {folder, normalized.substr(folder.empty() ? 0 : folder.size() + 1)};
}

// A name in the encoding of NTFS.
class NtfsName {
  public:
    explicit NtfsName(const std::string& name) : length_(ntfs_mbstoucs(name.c_str(), &characters_)) {}
    ~NtfsName() { ntfs_ucsfree(characters_); }
    NtfsName(const NtfsName&) = delete;
    NtfsName& operator=(const NtfsName&) = delete;

    bool IsAllowed() const {
        return length_ > 0 && length_ <= 255 &&
               !ntfs_forbidden_chars(characters_, length_, static_cast<BOOL>(1));
    }
    ntfschar* Characters() const { return characters_; }
    u8 Length() const { return static_cast<u8>(length_); }

  private:
    ntfschar* characters_ = nullptr;
    int length_;
};

// What a byte of the boot sector says: a number of units, or above 128 a power of two, negated.
uint64_t SizeOf(uint8_t field, uint64_t unit) {
    return field > 128 ? uint64_t{1} << std::min(256 - field, 40) : field * unit;
}

// The library allocates a record of whatever size the boot sector demands, up to 2 GB. NTFS uses 1 and 4 KiB.
bool DemandsHugeRecords(const ImageRange& range) {
    constexpr uint64_t largestRecord = 64 << 10;
    std::string boot(512, '\0');
    if (range.size < boot.size() || !range.image.Read(range.offset, boot.data(), boot.size())) return false;
    const uint64_t cluster = SizeOf(Byte(boot, 0x0D), 1) * Le16(boot, 0x0B);
    return std::max(SizeOf(Byte(boot, 0x40), cluster), SizeOf(Byte(boot, 0x44), cluster)) > largestRecord;
}

// A volume that is mounted for reading only was not asked for its journal and its hibernation file, as one is
// that is mounted for writing. Returns the errno with which that fails; 0 if it would not.
int WhyNotForWriting(ntfs_volume& volume) {
    const InodeOwner journal(ntfs_inode_open(&volume, FILE_LogFile));
    ntfs_attr* const content = journal ? ntfs_attr_open(journal.get(), AT_DATA, AT_UNNAMED, 0) : nullptr;
    if (content == nullptr) return EIO;
    RESTART_PAGE_HEADER* page = nullptr;
    const bool isClean = ntfs_check_logfile(content, &page) && ntfs_is_logfile_clean(content, page);
    // Version 2.0: Windows has kept the metadata in its memory, for a fast start.
    const bool isKept =
        page != nullptr && sle16_to_cpu(page->major_ver) == 2 && sle16_to_cpu(page->minor_ver) == 0;
    std::free(page);
    ntfs_attr_close(content);
    if (isKept) return EPERM;
    if (!isClean) return EOPNOTSUPP;
    return ntfs_volume_check_hiberfile(&volume, 0) < 0 && errno == EPERM ? EPERM : 0;
}

// What an operation may read beside the content of a file: a path leads through a few folders, each with a
// tree of a few levels; the allocation of clusters reads the bitmap, which is as long as the volume demands.
uint64_t ReadsFor(uint64_t volumeSize) {
    return 4096 + (volumeSize >> 24);
}

}  // namespace

NtfsVolume::Mount::Mount(ImageFile& image, uint64_t offset, uint64_t size, bool isReadOnly)
    : range_{image, offset, size} {
    Renew();
    if (DemandsHugeRecords(range_)) {
        error_ = EINVAL;
        return;
    }
    ntfs_log_set_handler(ntfs_log_handler_null);
    ntfs_set_char_encoding("utf8");
    ntfs_device* const device = NewDevice(range_);
    volume_ = ntfs_device_mount(device, isReadOnly ? NTFS_MNT_RDONLY : NTFS_MNT_NONE);
    if (!volume_) {
        error_ = errno;
        ntfs_device_free(device);
    } else {
        // Not by ntfs_set_ignore_case, which also makes a table of lower case, for names that are never asked
        // for.
        NVolClearCaseSensitive(volume_);
    }
}
NtfsVolume::Mount::~Mount() {
    if (volume_) ntfs_umount(volume_, static_cast<BOOL>(1));
}
NtfsVolume::Condition NtfsVolume::Mount::FoundCondition() const {
    if (range_.isUsedUp) return Condition::Damaged;
    // The errors of mounting for writing with a hibernation file (or metadata that Windows keeps across a
    // fast start), and with a journal that has not been replayed.
    const int error = volume_ && NVolReadOnly(volume_) ? WhyNotForWriting(*volume_) : error_;
    if (error == EPERM) return Condition::Hibernated;
    if (error == EOPNOTSUPP) return Condition::Unreplayed;
    if (!volume_ || range_.isUsedUp) return Condition::Damaged;
    for (const ntfs_inode* const inode : {volume_->mft_ni, volume_->mftmirr_ni, volume_->lcnbmp_ni}) {
        if (!IsSound(*inode)) return Condition::Damaged;
    }
    return (volume_->flags & VOLUME_IS_DIRTY) != 0 ? Condition::Dirty : Condition::Clean;
}
void NtfsVolume::Mount::Renew() {
    range_.readsLeft = ReadsFor(range_.size);
}

InodeOwner NtfsVolume::Mount::Open(const std::string& path) const {
    if (path.empty()) return InodeOwner(ntfs_inode_open(volume_, FILE_root));
    return InodeOwner(ntfs_pathname_to_inode(volume_, nullptr, path.c_str()));
}

uint32_t NtfsVolume::Mount::Find(std::string_view path, InodeOwner& inode) const {
    if (!Volume()) return errorFileCorrupt;
    inode = Open(Normalized(path));
    if (inode) return 0;
    return errno == ENOTDIR ? errorFileNotFound : PlatformError(errno);
}

void NtfsVolume::Mount::MarkAsChanging() const {
    const le16 flags = volume_->flags;
    range_.image.Mark([&] { ntfs_volume_write_flags(volume_, flags | VOLUME_IS_DIRTY); },
                      [&] { ntfs_volume_write_flags(volume_, flags); });
}

uint32_t NtfsVolume::Mount::Create(const std::string& path) const {
    const SplitPath split = Split(path);
    InodeOwner folder = Open(split.folder);
    if (!folder || !IsFolder(*folder)) return errorPathNotFound;
    if (IsSystemFile(*folder)) return errorAccessDenied;
    if (!IsSound(*folder)) return errorFileCorrupt;
    const NtfsName name(split.name);
    if (!name.IsAllowed()) return errorInvalidName;
    ntfs_inode* file = ntfs_create(folder.get(), 0, name.Characters(), name.Length(), S_IFREG);
    if (!file) return PlatformError(errno);
    // Closing a file updates its folder, which must not be open twice at that time.
    if (ntfs_inode_close_in_dir(file, folder.get()) != 0) {
        const uint32_t error = PlatformError(errno);
        Abandon(file);
        return error;
    }
    return Close(folder.release());
}

uint32_t NtfsVolume::Mount::Delete(const std::string& path) const {
    const SplitPath split = Split(path);
    const NtfsName name(split.name);
    InodeOwner folder = Open(split.folder);
    InodeOwner file = Open(path);
    if (!folder || !file || !name.IsAllowed()) return errorFileNotFound;
    if (!IsSound(*folder) || !IsSound(*file)) return errorFileCorrupt;
    // ntfs_delete closes both, also on failure.
    const int result =
        ntfs_delete(volume_, nullptr, file.release(), folder.release(), name.Characters(), name.Length());
    return result == 0 ? 0 : PlatformError(errno);
}

uint32_t NtfsVolume::Mount::Flush() const {
    for (ntfs_inode* inode : {volume_->mft_ni, volume_->mftmirr_ni, volume_->lcnbmp_ni}) {
        if (inode && NInoDirty(inode) && ntfs_inode_sync(inode) != 0) return PlatformError(errno);
    }
    return 0;
}

}  // namespace machine
