#include "machine/media/table/fdisk_session.h"

#include <cstring>

#include "machine/media/table/table_check.h"

namespace machine {

namespace {

// libfdisk's dialogs: collects warnings and leaves questions unanswered.
int NoteWarning(fdisk_context*, fdisk_ask* ask, void* data) {
    switch (fdisk_ask_get_type(ask)) {
        case FDISK_ASKTYPE_WARN:
        case FDISK_ASKTYPE_WARNX:
            static_cast<std::vector<std::string>*>(data)->emplace_back(fdisk_ask_print_get_mesg(ask));
            return 0;
        case FDISK_ASKTYPE_INFO:
            return 0;
        default:
            return -EINVAL;
    }
}

}  // namespace

FdiskSession::FdiskSession(const ImageFile& image) : context_(fdisk_new_context()) {
    if (!context_) throw std::bad_alloc();
    CheckGptLength(image);
    fdisk_set_ask(Context(), NoteWarning, &warnings_);
    fdisk_disable_dialogs(Context(), 1);
    fdisk_enable_listonly(Context(), 1);  // does not look for a file system in place of the table
    fdisk_enable_wipe(Context(), 0);
    const int error = fdisk_assign_device_by_fd(Context(), image.Descriptor(), image.Path().c_str(), 1);
    if (error != 0) throw image.Error(std::string("cannot be read as a disk: ") + std::strerror(-error));
}

FdiskOwner<fdisk_partition> FdiskSession::Slot(size_t slot) const {
    if (!fdisk_is_partition_used(Context(), slot)) return nullptr;
    fdisk_partition* partition = nullptr;
    if (fdisk_get_partition(Context(), slot, &partition) != 0) return nullptr;
    return FdiskOwner<fdisk_partition>(partition);
}

}  // namespace machine
