#include "machine/media/volumes/ntfs/ntfs_folder.h"

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

#include "machine/media/volumes/ntfs/ntfs_inode.h"

namespace machine {

namespace {

// Of a file's record, its attribute list and the records of that.
constexpr uint64_t readsForAnEntry = 8;

struct Found {
    std::string name;
    MFT_REF record;
};

struct Search {
    std::vector<Found> found;
    bool isOutOfMemory = false;
};

// UTF-8; "?" for a name that is not UTF-16.
std::string TextOf(const ntfschar* name, int length) {
    char* bytes = nullptr;
    if (ntfs_ucstombs(name, length, &bytes, 0) < 0) return "?";
    const std::unique_ptr<char, decltype(&std::free)> owner(bytes, &std::free);
    return bytes;
}

// Called by the library, through which nothing may be thrown.
int AddName(void* search, const ntfschar* name, const int length, const int nameType, const s64,
            const MFT_REF record, const unsigned) {
    auto& to = *static_cast<Search*>(search);
    if (nameType == FILE_NAME_DOS || (MREF(record) < FILE_first_user && MREF(record) != FILE_root)) return 0;
    try {
        const std::string text = TextOf(name, length);
        if (text != "." && text != "..") to.found.push_back({text, record});
    } catch (const std::bad_alloc&) {
        to.isOutOfMemory = true;
        return -1;
    }
    return 0;
}

// A file whose record cannot be read is there all the same.
FileEntry EntryOf(ntfs_volume* volume, const Found& found) {
    const InodeOwner inode(ntfs_inode_open(volume, found.record));
    if (!inode) return {found.name, FileKind::File};
    if (IsFolder(*inode)) return {found.name, FileKind::Folder};
    return {found.name, FileKind::File, LengthOf(*inode)};
}

}  // namespace

uint32_t ListFolder(ntfs_inode& folder, ImageRange& range, std::vector<FileEntry>& entries) {
    Search search;
    s64 position = 0;
    // Where case is ignored, the library passes names on in lower case.
    NVolSetCaseSensitive(folder.vol);
    const int result = ntfs_readdir(&folder, &position, &search, AddName);
    NVolClearCaseSensitive(folder.vol);
    if (search.isOutOfMemory) throw std::bad_alloc();
    if (result != 0) return PlatformError(errno);
    for (const Found& found : search.found) {
        range.readsLeft += readsForAnEntry;
        entries.push_back(EntryOf(folder.vol, found));
    }
    return 0;
}

}  // namespace machine
