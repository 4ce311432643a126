#include "machine/media/volumes/ntfs/ntfs_inode.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "machine/media/device/store_errors.h"
#include "machine/media/image/volume_bytes.h"

namespace machine {

namespace {

struct AttributeClose {
    void operator()(ntfs_attr* attribute) const { ntfs_attr_close(attribute); }
};
using AttributeOwner = std::unique_ptr<ntfs_attr, AttributeClose>;

// A damaged record can have bits that are no value of the enumeration, and so must not be read as one.
bool Has(const ntfs_inode& inode, FILE_ATTR_FLAGS flag) {
    uint32_t flags = 0;
    static_assert(sizeof flags == sizeof inode.flags);
    std::memcpy(&flags, &inode.flags, sizeof flags);
    return (flags & static_cast<uint32_t>(flag)) != 0;
}

}  // namespace

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

void Abandon(ntfs_inode* inode) {
    NInoClearDirty(inode);
    NInoAttrListClearDirty(inode);
    NInoFileNameClearDirty(inode);
    ntfs_inode_close(inode);
}

uint32_t Close(ntfs_inode* inode) {
    if (ntfs_inode_close(inode) == 0) return 0;
    const uint32_t error = PlatformError(errno);
    Abandon(inode);
    return error;
}

bool IsFolder(const ntfs_inode& inode) {
    return (inode.mrec->flags & MFT_RECORD_IS_DIRECTORY) != 0;
}

bool IsSystemFile(const ntfs_inode& inode) {
    return inode.mft_no < FILE_first_user && inode.mft_no != FILE_root;
}

bool IsClosed(const ntfs_inode& inode) {
    return IsFolder(inode) || IsSystemFile(inode) || Has(inode, FILE_ATTR_ENCRYPTED);
}

bool IsClosedForChange(const ntfs_inode& inode) {
    return IsClosed(inode) || Has(inode, FILE_ATTR_READONLY);
}

std::optional<uint64_t> LengthOf(ntfs_inode& inode) {
    const AttributeOwner data(ntfs_attr_open(&inode, AT_DATA, AT_UNNAMED, 0));
    if (!data || data->data_size < 0) return std::nullopt;
    return static_cast<uint64_t>(data->data_size);
}

uint32_t ReadParts(ntfs_inode& inode, ImageRange& range, uint64_t longest,
                   const std::function<void(std::string_view)>& take) {
    constexpr s64 longestPart = 1 << 20;
    const AttributeOwner data(ntfs_attr_open(&inode, AT_DATA, AT_UNNAMED, 0));
    if (!data) return PlatformError(errno);
    const s64 length = data->data_size;
    if (length < 0 || static_cast<uint64_t>(length) > longest) return errorFileCorrupt;
    // In the worst case each cluster is read by itself.
    range.readsLeft += static_cast<uint64_t>(length) / inode.vol->cluster_size;
    std::string part;
    for (s64 at = 0; at < length; at += longestPart) {
        part.resize(static_cast<size_t>(std::min(length - at, longestPart)));
        const s64 wanted = static_cast<s64>(part.size());
        const s64 done = ntfs_attr_pread(data.get(), at, wanted, part.data());
        if (done != wanted) return done < 0 ? PlatformError(errno) : errorFileCorrupt;
        take(part);
    }
    return 0;
}

uint32_t ReadContent(ntfs_inode& inode, ImageRange& range, std::string& content) {
    std::string bytes;
    const uint32_t error = ReadParts(inode, range, std::min(range.size, longestFile),
                                     [&](std::string_view part) { bytes += part; });
    if (error == 0) content = std::move(bytes);
    return error;
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

}  // namespace machine
