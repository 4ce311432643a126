#include "machine/media/device/disk_identity.h"
#include "machine/media/device/disk_server.h"
#include "machine/media/device/late_library.h"
#include "machine/media/device/open_device.h"
#include "machine/media/given_images.h"
#include "machine/media/hive/hivex_reader.h"
#include "machine/media/medium_image.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/sha256.h"
#include "tools/kestova/common/terminal.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/pc/described_images.h"
#include "tools/kestova/pc/images.h"

namespace {

// "(MODEL, serial number S, 465.8 GiB)".
std::string WhichDisk(const std::string& path) {
    const machine::DiskIdentity disk = machine::IdentityOf(path);
    std::string text = "(";
    if (!disk.model.empty()) text += disk.model + ", ";
    if (!disk.serial.empty()) text += "serial number " + disk.serial + ", ";
    return text + SizeText(disk.bytes) + ")";
}

using Paths = std::vector<std::string>;

// Of disks, discs and sticks; nothing if a description does not show which.
std::optional<Paths> ImagesOf(const PcChoice& choice) {
    std::optional<Paths> images = Paths();
    if (!choice.pc.empty() && !IsMachine(choice.pc)) images = DescribedImages(choice.pc);
    if (!images) return std::nullopt;
    for (const Paths* const paths : {&choice.images, &choice.discs, &choice.sticks})
        images->insert(images->end(), paths->begin(), paths->end());
    return images;
}

}  // namespace

void BeginOpening(const PcChoice& choice, const UnusualWork& work) {
    try {
        const std::optional<Paths> images = ImagesOf(choice);
        if (images) {
            machine::PrepareToOpen(*images);
        } else {
            machine::PrepareToOpenAny();
        }
        if (work.readsHives && (!images || !images->empty())) machine::LoadHivex();
        if (work.hashesFiles) LoadSha256();
    } catch (const machine::LibraryMissing& missing) {
        throw Failed(missing.what());
    } catch (const machine::ImageError& error) {
        throw Failed(error.what());
    }
}

void EndOpening() {
    machine::EndDiskServerStarter();
}

machine::Pc OpenImages(const std::vector<std::string>& paths, machine::SystemKind system,
                       const machine::ImageUse& use) {
    try {
        return machine::PcOfImages(paths, system, use);
    } catch (const machine::ImageError& error) {
        throw UnreadablePc(error.what());
    }
}

std::string UsualJournal(const std::string& image) {
    return machine::JournalBeside(image);
}

std::string UsualBackup(const std::string& image) {
    return machine::BackupBeside(image);
}

std::vector<LinkedLibrary> ImageLibraries() {
    return {{"libntfs-3g", "GPL-2.0-or-later"}, {"zlib", "zlib"}};
}

std::vector<LinkedLibrary> LateImageLibraries() {
    return {{"libnbd", "LGPL-2.1-or-later"},
            {"libewf", "LGPL-3.0-or-later"},
            {"libhivex", "LGPL-2.1"},
            {"libnettle", "LGPL-3.0-or-later"}};
}

bool IsDiskOfComputer(const std::string& image) {
    return machine::IsDisk(image);
}

ComputerDisk IdentityOfDisk(const std::string& image) {
    const machine::DiskIdentity disk = machine::IdentityOf(image);
    return {disk.model, disk.serial};
}

bool ConfirmDisks(const std::vector<std::string>& images) {
    bool isConfirmed = false;
    for (const std::string& image : images) {
        if (!machine::IsDisk(image)) continue;
        const std::string which = WhichDisk(image);
        const auto answer = AskOnTerminal(image + " " + which + " is a disk of this computer. Change it?");
        if (!answer) throw UnreadablePc(machine::NotConfirmed(image) + " " + which);
        if (!*answer) throw Failed(image + ": nothing was changed");
        isConfirmed = true;
    }
    return isConfirmed;
}

machine::Recovery RecoverChange(const std::string& path, const machine::ImageUse& use) {
    try {
        return machine::RecoverImage(path, use);
    } catch (const machine::ImageError& error) {
        throw UnreadablePc(error.what());
    }
}

machine::RepairedTable RepairTableOf(const std::string& path, const machine::ImageUse& use) {
    try {
        return machine::RepairImageTable(path, use);
    } catch (const machine::ImageError& error) {
        throw UnreadablePc(error.what());
    }
}

machine::UndoneChange UndoChange(const std::string& path, const std::string& backup,
                                 const machine::ImageUse& use) {
    try {
        return machine::UndoImageChange(path, backup, use);
    } catch (const machine::ImageError& error) {
        throw UnreadablePc(error.what());
    }
}

std::string ImageOfBackupFile(const std::string& backup) {
    return machine::ImageOfBackup(backup);
}

void InsertMedia(machine::Pc& pc, const std::vector<std::string>& discs,
                 const std::vector<std::string>& sticks) {
    try {
        for (const std::string& disc : discs)
            machine::InsertDisc(pc, disc);
        for (const std::string& stick : sticks)
            machine::InsertStick(pc, stick);
    } catch (const machine::ImageError& error) {
        throw UnreadablePc(error.what());
    }
}

void AttachImages(machine::Pc& pc, const machine::ImageUse& use) {
    try {
        machine::CheckEachIsNew(pc);
        machine::ImageUse eachUse = use;
        eachUse.mayBeBlank = pc.disks.size() > 1;
        for (machine::Disk& disk : pc.disks) {
            if (!disk.image.empty()) machine::AttachImage(disk, eachUse);
        }
        for (machine::Volume& volume : pc.volumes) {
            if (!volume.image.empty()) machine::AttachMedium(volume);
        }
        pc.hiveReader = std::make_shared<machine::HivexReader>();
    } catch (const machine::ImageError& error) {
        throw UnreadablePc(error.what());
    }
}
