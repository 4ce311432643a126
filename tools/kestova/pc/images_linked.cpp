#include "machine/media/device/disk_server.h"
#include "machine/media/given_images.h"
#include "machine/media/hivex_reader.h"
#include "machine/media/medium_image.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/pc/images.h"

void BeginOpening(const PcChoice& choice) {
    if (choice.images.empty() && choice.discs.empty() && choice.sticks.empty() && choice.pc.empty()) return;
    try {
        machine::KeepDiskServerStarter();
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

machine::Recovery RecoverChange(const std::string& path, const machine::JournalPlace& journal) {
    try {
        return machine::RecoverImage(path, journal);
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
