#include "machine/media/volumes/ntfs/ntfs_volume.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <string>

#include "machine/facts/store_path.h"
#include "machine/media/device/store_errors.h"
#include "machine/media/image/volume_bytes.h"
#include "machine/media/volumes/ntfs/ntfs_device.h"
#include "machine/media/volumes/ntfs/ntfs_library.h"
#include "machine/media/volumes/ntfs/ntfs_record.h"

namespace machine {

namespace {

uint32_t PlatformError(int error) {
    switch (error) {
        case ENOENT:
            return errorFileNotFound;
        case ENOTDIR:
            return errorPathNotFound;
        case EACCES:
        case EPERM:
            return errorAccessDenied;
        case EROFS:
            return errorWriteProtect;
        case ENOSPC:
            return errorDiskFull;
        case EINVAL:
        case EILSEQ:
        case ENAMETOOLONG:
            return errorInvalidName;
        case EIO:
            return errorIoDevice;
        default:
            return errorFileCorrupt;
    }
}

// --- names and open files ---

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

// Frees a file whose changes could not be written. The library keeps such a file open, to try again.
void Abandon(ntfs_inode* inode) {
    NInoClearDirty(inode);
    NInoAttrListClearDirty(inode);
    NInoFileNameClearDirty(inode);
    ntfs_inode_close(inode);
}

// Returns the platform's error, with the file closed all the same.
uint32_t Close(ntfs_inode* inode) {
    if (ntfs_inode_close(inode) == 0) return 0;
    const uint32_t error = PlatformError(errno);
    Abandon(inode);
    return error;
}

struct InodeClose {
    void operator()(ntfs_inode* inode) const { Close(inode); }
};
struct AttributeClose {
    void operator()(ntfs_attr* attribute) const { ntfs_attr_close(attribute); }
};
using InodeOwner = std::unique_ptr<ntfs_inode, InodeClose>;
using AttributeOwner = std::unique_ptr<ntfs_attr, AttributeClose>;

bool IsFolder(const ntfs_inode& inode) {
    return (inode.mrec->flags & MFT_RECORD_IS_DIRECTORY) != 0;
}

// $MFT and the like, which Windows does not open for anybody.
bool IsSystemFile(const ntfs_inode& inode) {
    return inode.mft_no < FILE_first_user && inode.mft_no != FILE_root;
}

// A damaged record can have bits that are no value of the enumeration, and so must not be read as one.
bool Has(const ntfs_inode& inode, FILE_ATTR_FLAGS flag) {
    uint32_t flags = 0;
    static_assert(sizeof flags == sizeof inode.flags);
    std::memcpy(&flags, &inode.flags, sizeof flags);
    return (flags & static_cast<uint32_t>(flag)) != 0;
}

bool IsClosed(const ntfs_inode& inode) {
    return IsFolder(inode) || IsSystemFile(inode) || Has(inode, FILE_ATTR_ENCRYPTED);
}

bool IsClosedForChange(const ntfs_inode& inode) {
    return IsClosed(inode) || Has(inode, FILE_ATTR_READONLY);
}

// What an operation may read beside the content of a file: a path leads through a few folders, each with a
// tree of a few levels; the allocation of clusters reads the bitmap, which is as long as the volume demands.
uint64_t ReadsFor(uint64_t volumeSize) {
    return 4096 + (volumeSize >> 24);
}

uint32_t ReadContent(ntfs_inode& inode, ImageRange& range, std::string& content) {
    const AttributeOwner data(ntfs_attr_open(&inode, AT_DATA, AT_UNNAMED, 0));
    if (!data) return PlatformError(errno);
    const uint64_t longest = std::min(range.size, longestFile);
    if (data->data_size < 0 || static_cast<uint64_t>(data->data_size) > longest) return errorFileCorrupt;
    // In the worst case each cluster is read by itself.
    range.readsLeft += static_cast<uint64_t>(data->data_size) / inode.vol->cluster_size;
    std::string bytes(static_cast<size_t>(data->data_size), '\0');
    const s64 done = bytes.empty() ? 0 : ntfs_attr_pread(data.get(), 0, data->data_size, bytes.data());
    if (done != data->data_size) return done < 0 ? PlatformError(errno) : errorFileCorrupt;
    content = std::move(bytes);
    return 0;
}

uint32_t WriteContent(ntfs_inode& inode, std::string_view content) {
    const AttributeOwner data(ntfs_attr_open(&inode, AT_DATA, AT_UNNAMED, 0));
    if (!data) return PlatformError(errno);
    const s64 size = static_cast<s64>(content.size());
    if (ntfs_attr_truncate(data.get(), size) != 0) return PlatformError(errno);
    for (s64 done = 0; done < size;) {
        const s64 written = ntfs_attr_pwrite(data.get(), done, size - done, content.data() + done);
        if (written <= 0) return written < 0 ? PlatformError(errno) : errorIoDevice;
        done += written;
    }
    if (ntfs_attr_pclose(data.get()) != 0) return PlatformError(errno);
    ntfs_inode_update_times(&inode, static_cast<ntfs_time_update_flags>(NTFS_UPDATE_MCTIME));
    return 0;
}

}  // namespace

// --- the mounted volume ---

namespace {

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

// What must happen to the volume before it may be changed: Windows would restore its own version, or lose
// what it has not written yet.
const char* AdviceFor(NtfsVolume::Condition condition) {
    switch (condition) {
        case NtfsVolume::Condition::Dirty:
            return " is marked dirty: start Windows, let chkdsk check it, shut down, and try again";
        case NtfsVolume::Condition::Unreplayed:
            return " is inconsistent, because it was not shut down: start Windows, shut it down completely "
                   "(shutdown /s /t 0), and try again";
        case NtfsVolume::Condition::Hibernated:
            return " is hibernated: start Windows, shut it down completely (shutdown /s /t 0), and try again";
        case NtfsVolume::Condition::Clean:
        case NtfsVolume::Condition::Damaged:
            break;
    }
    return " is damaged: let chkdsk repair it on a running Windows, and try again";
}

}  // namespace

class NtfsVolume::Mount {
  public:
    Mount(ImageFile& image, uint64_t offset, uint64_t size, bool isReadOnly) : range_{image, offset, size} {
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
        } else if (ntfs_set_ignore_case(volume_) != 0) {
            throw std::bad_alloc();
        }
    }
    ~Mount() {
        if (volume_) ntfs_umount(volume_, static_cast<BOOL>(1));
    }
    Mount(const Mount&) = delete;
    Mount& operator=(const Mount&) = delete;

    // Null if it cannot be mounted, or refers to itself.
    ntfs_volume* Volume() const { return range_.isUsedUp ? nullptr : volume_; }
    Condition FoundCondition() const {
        if (range_.isUsedUp) return Condition::Damaged;
        // The errors of mounting for writing with a hibernation file (or metadata that Windows keeps across a
        // fast start), and with a journal that has not been replayed.
        if (error_ == EPERM) return Condition::Hibernated;
        if (error_ == EOPNOTSUPP) return Condition::Unreplayed;
        if (!volume_) return Condition::Damaged;
        for (const ntfs_inode* const inode : {volume_->mft_ni, volume_->mftmirr_ni, volume_->lcnbmp_ni}) {
            if (!IsSound(*inode)) return Condition::Damaged;
        }
        return (volume_->flags & VOLUME_IS_DIRTY) != 0 ? Condition::Dirty : Condition::Clean;
    }
    // What the next operation may read.
    void Renew() { range_.readsLeft = ReadsFor(range_.size); }
    ImageRange& Range() { return range_; }

    // Null, with errno set, if there is none.
    InodeOwner Open(const std::string& path) const {
        if (path.empty()) return InodeOwner(ntfs_inode_open(volume_, FILE_root));
        return InodeOwner(ntfs_pathname_to_inode(volume_, nullptr, path.c_str()));
    }

    // The volume counts as dirty while its change is being written.
    void MarkAsChanging() const {
        const le16 flags = volume_->flags;
        range_.image.Mark([&] { ntfs_volume_write_flags(volume_, flags | VOLUME_IS_DIRTY); },
                          [&] { ntfs_volume_write_flags(volume_, flags); });
    }

    // Creates an empty file in an existing folder.
    uint32_t Create(const SplitPath& path) const {
        InodeOwner folder = Open(path.folder);
        if (!folder || !IsFolder(*folder)) return errorPathNotFound;
        if (IsSystemFile(*folder)) return errorAccessDenied;
        if (!IsSound(*folder)) return errorFileCorrupt;
        const NtfsName name(path.name);
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

    uint32_t Delete(const std::string& path) const {
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

    // Passes on to the image what libntfs-3g still caches.
    uint32_t Flush() const {
        for (ntfs_inode* inode : {volume_->mft_ni, volume_->mftmirr_ni, volume_->lcnbmp_ni}) {
            if (inode && NInoDirty(inode) && ntfs_inode_sync(inode) != 0) return PlatformError(errno);
        }
        return 0;
    }

  private:
    ImageRange range_;
    ntfs_volume* volume_ = nullptr;
    int error_ = 0;
};

NtfsVolume::NtfsVolume(std::shared_ptr<ImageFile> image, uint64_t offset, uint64_t size)
    : image_(std::move(image)), offset_(offset), size_(size) {}

NtfsVolume::~NtfsVolume() = default;

NtfsVolume::Mount& NtfsVolume::Mounted() {
    if (!mount_) mount_ = std::make_unique<Mount>(*image_, offset_, size_, true);
    mount_->Renew();
    return *mount_;
}

NtfsVolume::Condition NtfsVolume::Check() {
    if (image_->Access() == ImageAccess::Read) return Mounted().FoundCondition();
    if (condition_) return *condition_;
    auto mount = std::make_unique<Mount>(*image_, offset_, size_, false);
    condition_ = mount->FoundCondition();
    // From here on, questions see what is written.
    if (mount->Volume()) mount_ = std::move(mount);
    return *condition_;
}

uint32_t NtfsVolume::PrepareChange() {
    if (image_->Access() == ImageAccess::Read) return errorWriteProtect;
    const Condition condition = Check();
    if (condition == Condition::Clean) return 0;
    if (condition == Condition::Dirty && image_->ForcesDirty()) return 0;
    image_->Bar(name_ + AdviceFor(condition));
    return condition == Condition::Damaged ? errorFileCorrupt : errorWriteProtect;
}

FileKind NtfsVolume::Find(std::string_view path) {
    const Mount& mount = Mounted();
    if (!mount.Volume()) return FileKind::None;
    const InodeOwner inode = mount.Open(Normalized(path));
    if (!inode) return FileKind::None;
    return IsFolder(*inode) ? FileKind::Folder : FileKind::File;
}

uint32_t NtfsVolume::Read(std::string_view path, std::string& content) {
    Mount& mount = Mounted();
    if (!mount.Volume()) return errorFileCorrupt;
    const InodeOwner inode = mount.Open(Normalized(path));
    if (!inode) return errno == ENOTDIR ? errorFileNotFound : PlatformError(errno);
    if (IsClosed(*inode)) return errorAccessDenied;
    return ReadContent(*inode, mount.Range(), content);
}

uint32_t NtfsVolume::Write(std::string_view path, std::string_view content) {
    const uint32_t unchangeable = PrepareChange();
    if (unchangeable != 0) return unchangeable;
    Mount& mount = Mounted();
    if (!mount.Volume()) return errorFileCorrupt;
    mount.Range().readsLeft += content.size() / mount.Volume()->cluster_size;
    mount.MarkAsChanging();
    const std::string whole = Normalized(path);
    InodeOwner file = mount.Open(whole);
    const bool isNew = !file;
    if (isNew) {
        const uint32_t error = mount.Create(Split(whole));
        if (error != 0) return error;
        file = mount.Open(whole);
        if (!file) return errorIoDevice;
    }
    if (IsClosedForChange(*file)) return errorAccessDenied;
    if (!IsSound(*file)) return errorFileCorrupt;

    // Restores the old content if the new content cannot be written, for instance on a full volume.
    std::string before;
    uint32_t error = isNew ? 0 : ReadContent(*file, mount.Range(), before);
    if (error != 0) return error;
    error = WriteContent(*file, content);
    if (error != 0 && !isNew) WriteContent(*file, before);
    const uint32_t closeError = Close(file.release());
    if (error == 0) error = closeError;
    if (error != 0 && isNew) mount.Delete(whole);
    const uint32_t flushError = mount.Flush();
    return error != 0 ? error : flushError;
}

uint32_t NtfsVolume::Remove(std::string_view path) {
    const std::string whole = Normalized(path);
    if (!Mounted().Volume()) return errorFileCorrupt;
    // What is not there is not removed, in whatever condition the volume is.
    if (!Mounted().Open(whole)) return errorFileNotFound;
    const uint32_t unchangeable = PrepareChange();
    if (unchangeable != 0) return unchangeable;
    const Mount& mount = Mounted();
    {
        const InodeOwner file = mount.Open(whole);
        if (!file) return errorFileNotFound;
        if (IsClosedForChange(*file)) return errorAccessDenied;
    }
    mount.MarkAsChanging();
    const uint32_t error = mount.Delete(whole);
    const uint32_t flushError = mount.Flush();
    return error != 0 ? error : flushError;
}

}  // namespace machine
