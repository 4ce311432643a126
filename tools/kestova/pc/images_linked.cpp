#include "machine/media/device/disk_identity.h"
#include "machine/media/device/disk_server.h"
#include "machine/media/device/open_device.h"
#include "machine/media/given_images.h"
#include "machine/media/hive/hivex_reader.h"
#include "machine/media/medium_image.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/terminal.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/pc/images.h"

namespace {

// "/dev/sdb (MODEL, serial number S, 465.8 GiB)".
std::string DiskText(const std::string& path) {
    const machine::DiskIdentity disk = machine::IdentityOf(path);
    std::string text = path + " (";
    if (!disk.model.empty()) text += disk.model + ", ";
    if (!disk.serial.empty()) text += "serial number " + disk.serial + ", ";
    return text + SizeText(disk.bytes) + ")";
}

}  // namespace

void BeginOpening(const PcChoice& choice) {
    try {
        for (const auto* paths : {&choice.images, &choice.discs, &choice.sticks})
            machine::PrepareToOpen(*paths);
        // A description can name images of any format.
        if (!choice.pc.empty() && !IsMachine(choice.pc)) machine::PrepareToOpenAny();
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

std::vector<LinkedLibrary> ImageLibraries() {
    return {{"libntfs-3g", "GPL-2.0-or-later"}, {"libhivex", "LGPL-2.1"}, {"zlib", "zlib"}};
}

std::vector<LinkedLibrary> LateImageLibraries() {
    return {{"libnbd", "LGPL-2.1-or-later"}, {"libewf", "LGPL-3.0-or-later"}};
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
        const auto answer = AskOnTerminal(DiskText(image) + " is a disk of this computer. Change it?");
        if (answer == false) throw Failed(image + ": nothing was changed");
        isConfirmed = answer.has_value();
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
        for (machine::Disk& disk : pc.disks) {
            if (!disk.image.empty()) machine::AttachImage(disk, use);
        }
        for (machine::Volume& volume : pc.volumes) {
            if (!volume.image.empty()) machine::AttachMedium(volume);
        }
        pc.hiveReader = std::make_shared<machine::HivexReader>();
    } catch (const machine::ImageError& error) {
        throw UnreadablePc(error.what());
    }
}
