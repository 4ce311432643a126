#include "machine/media/volumes/ntfs/ntfs_volume.h"

#include "machine/facts/store_path.h"
#include "machine/media/device/store_errors.h"
#include "machine/media/volumes/ntfs/ntfs_folder.h"
#include "machine/media/volumes/ntfs/ntfs_mount.h"
#include "machine/media/volumes/ntfs/ntfs_record.h"

namespace machine {

namespace {

// What must happen to the volume before it may be changed: Windows would restore its own version, or lose
// what it has not written yet.
const char* AdviceFor(NtfsVolume::Condition condition) {
    switch (condition) {
        case NtfsVolume::Condition::Dirty:
            return "is marked dirty: start Windows, let chkdsk check it, shut down, and try again";
        case NtfsVolume::Condition::Unreplayed:
            return "is inconsistent, because it was not shut down: start Windows, shut it down completely "
                   "(shutdown /s /t 0), and try again";
        case NtfsVolume::Condition::Hibernated:
            return "is hibernated: start Windows, shut it down completely (shutdown /s /t 0), and try again";
        case NtfsVolume::Condition::Unknown:
        case NtfsVolume::Condition::Clean:
        case NtfsVolume::Condition::Damaged:
            break;
    }
    return "is damaged: let chkdsk repair it on a running Windows, and try again";
}

}  // namespace

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

bool NtfsVolume::AllowsChange(Condition condition) const {
    return condition == Condition::Clean || (condition == Condition::Dirty && image_->ForcesDirty());
}

std::string NtfsVolume::WhyUnchangeable() {
    const Condition condition = Check();
    return AllowsChange(condition) ? "" : AdviceFor(condition);
}

uint32_t NtfsVolume::PrepareChange() {
    if (image_->Access() == ImageAccess::Read) return errorWriteProtect;
    const Condition condition = Check();
    if (AllowsChange(condition)) return 0;
    image_->Bar(name_ + " " + AdviceFor(condition));
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
    InodeOwner inode;
    if (const uint32_t error = mount.Find(path, inode); error != 0) return error;
    if (IsClosed(*inode)) return errorAccessDenied;
    return ReadContent(*inode, mount.Range(), content);
}

uint32_t NtfsVolume::ReadParts(std::string_view path, const std::function<void(std::string_view)>& take) {
    Mount& mount = Mounted();
    InodeOwner inode;
    if (const uint32_t error = mount.Find(path, inode); error != 0) return error;
    if (IsClosed(*inode)) return errorAccessDenied;
    return machine::ReadParts(*inode, mount.Range(), mount.Range().size, take);
}

uint32_t NtfsVolume::List(std::string_view path, std::vector<FileEntry>& entries) {
    Mount& mount = Mounted();
    InodeOwner inode;
    if (const uint32_t error = mount.Find(path, inode); error != 0) return error;
    if (IsFolder(*inode)) return ListFolder(*inode, mount.Range(), entries);
    entries.push_back({NamesOf(path).back(), FileKind::File, LengthOf(*inode)});
    return 0;
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
        const uint32_t error = mount.Create(whole);
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
