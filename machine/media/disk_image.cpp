#include "machine/media/disk_image.h"

#include <algorithm>
#include <memory>

#include "machine/facts/extent_type.h"
#include "machine/media/device/disk_identity.h"
#include "machine/media/device/shell_word.h"
#include "machine/media/image/image_file.h"
#include "machine/media/table/gpt_repair.h"
#include "machine/media/table/image_table.h"
#include "machine/media/volumes/file_system.h"
#include "machine/media/volumes/ntfs/ntfs_volume.h"
#include "machine/media/volumes/volume_image.h"

namespace machine {

namespace {

// "partition 2 "Windows"".
std::string NameOf(const Partition& partition) {
    std::string name = "partition " + std::to_string(partition.number);
    const auto& label = partition.volume->label.value;
    if (label && !label->empty()) name += " \"" + *label + "\"";
    return name;
}

// What Windows would find there: a known file system, or an unreadable one if the partition's type implies
// a volume.
std::optional<Volume> ReadVolume(const std::shared_ptr<ImageFile>& image, PartitionStyle style,
                                 const Partition& partition) {
    if (IsExtended(style, partition)) return std::nullopt;
    const auto fileSystem =
        FileSystemOf(VolumeBytes(image, partition.offset, partition.size), MediumKind::Disk);
    if (!fileSystem && ExtentTypeOf(style, partition) != VDS_DET_DATA) return std::nullopt;
    return VolumeAt(image, fileSystem.value_or(FileSystem{"RAW", ""}), partition.offset, partition.size);
}

// Keeps the parts of a described volume that its image does not contain.
void Merge(const ImageFile& image, const Volume& described, Partition& partition) {
    if (!partition.volume) {
        partition.volume.emplace();
        partition.volume->fileSystem = "RAW";
    }
    Volume& volume = *partition.volume;
    if (volume.store && !described.files.IsEmpty())
        throw image.Error(NameOf(partition) +
                          " is described with files, but has those that are on the image");
    volume.letters = described.letters;
    volume.driveType = described.driveType;
    volume.furtherExtents = described.furtherExtents;
    volume.openError = described.openError;
    volume.extentType = described.extentType;
    volume.files = described.files;
    if (!described.label.value) volume.label = described.label;
}

void Merge(const ImageFile& image, const std::vector<Partition>& described, Disk& disk) {
    for (const Partition& given : described) {
        const auto partition =
            std::find_if(disk.partitions.begin(), disk.partitions.end(),
                         [&](const Partition& candidate) { return candidate.number == given.number; });
        if (partition == disk.partitions.end())
            throw image.Error("partition " + std::to_string(given.number) +
                              " is described, but not on the image");
        if (given.volume) Merge(image, *given.volume, *partition);
    }
}

// Null for another volume.
NtfsVolume* NtfsOn(const Partition& partition) {
    return partition.volume ? dynamic_cast<NtfsVolume*>(partition.volume->store.get()) : nullptr;
}

void NameVolumes(const Disk& disk) {
    for (const Partition& partition : disk.partitions) {
        if (NtfsVolume* const volume = NtfsOn(partition)) volume->SetName(NameOf(partition));
    }
}

void CheckMayChangeTable(ImageFile& image, const TableFindings& findings, bool mayBeDamaged) {
    if (findings.problems.empty()) return;
    const std::string problem =
        findings.problems.front() +
        (findings.canBeRepaired
             ? "; run `kestova --image " + ShellWord(image.Path()) + " repair-table` before it is changed"
             : "");
    if (!mayBeDamaged) throw image.Error(problem);
    image.BarWrites(problem);
}

// A volume that an image consists of.
struct SingleVolume {
    std::string kind;    // "NTFS", "ISO 9660"
    std::string option;  // which takes such a file; empty if none does
};

// Nothing for a medium with a table beside the volume, such as a stick that starts a rescue system.
std::optional<SingleVolume> SingleVolumeOn(const std::shared_ptr<ImageFile>& image) {
    const VolumeBytes whole(image, 0, image->Size());
    const auto volume = FileSystemOf(whole, MediumKind::Disk);
    if (volume && (volume->kind != "UDF" || !HasTable(*image))) {
        const bool isRead = VolumeAt(image, *volume, 0, image->Size()).store != nullptr;
        return SingleVolume{volume->kind, isRead ? "--stick" : ""};
    }
    if (HasTable(*image)) return std::nullopt;
    const auto disc = FileSystemOf(whole, MediumKind::Disc);
    if (!disc) return std::nullopt;
    return SingleVolume{disc->kind == "CDFS" ? "ISO 9660" : disc->kind, "--disc"};
}

// The first sector of a volume has the same signature as a partition table.
void CheckIsWholeDisk(const std::shared_ptr<ImageFile>& image) {
    const auto volume = SingleVolumeOn(image);
    if (!volume) return;
    const std::string what = IsDisk(image->Path()) ? ": the disk holds" : ": the file holds";
    const std::string hint = volume->option.empty() ? "" : "; " + volume->option + " opens it";
    throw image->Error(WhyNoDisk(*image) + what + " a single " + volume->kind + " volume" + hint);
}

bool Touches(const ImageChange& change, const Partition& partition) {
    return std::any_of(change.begin(), change.end(), [&](const ChangedRun& run) {
        return run.offset < partition.offset + partition.size &&
               run.offset + run.before.size() > partition.offset;
    });
}

// A system that has a volume in its memory must not find it changed back either.
void CheckMayChangeVolumes(const std::shared_ptr<ImageFile>& image, const ImageChange& change) {
    Disk disk;
    ReadTable(*image, disk);
    for (Partition& partition : disk.partitions)
        partition.volume = ReadVolume(image, disk.style, partition);
    NameVolumes(disk);
    for (const Partition& partition : disk.partitions) {
        auto* const volume = NtfsOn(partition);
        if (volume != nullptr && Touches(change, partition)) volume->PrepareChange();
    }
    if (!image->WhyBarred().empty()) throw ImageError(image->WhyBarred());
}

void CommitOrThrow(ImageFile& image) {
    const std::string unwritten = image.Commit();
    if (!unwritten.empty()) throw ImageError(unwritten);
}

}  // namespace

void AttachImage(Disk& disk, const ImageUse& use) {
    const auto image = std::make_shared<ImageFile>(disk.image, use);
    CheckIsWholeDisk(image);
    Disk attached = disk;
    TableFindings findings;
    if (use.mayBeBlank && !HasTable(*image)) {
        ReadBlank(*image, attached);
    } else {
        findings = ReadTable(*image, attached);
    }
    if (use.access != ImageAccess::Read) CheckMayChangeTable(*image, findings, use.mayBeDamaged);
    for (const std::vector<std::string>* const sentences : {&findings.problems, &findings.remarks}) {
        for (const std::string& sentence : *sentences)
            image->AddNote(sentence);
    }
    for (Partition& partition : attached.partitions)
        partition.volume = ReadVolume(image, attached.style, partition);
    Merge(*image, disk.partitions, attached);
    NameVolumes(attached);
    attached.table = std::make_shared<ImageTable>(image, attached.style);
    attached.medium = image;
    disk = std::move(attached);
}

UndoneChange UndoImageChange(const std::string& path, const std::string& backup, const ImageUse& use) {
    const ChangesOfImage changes = ReadBackup(backup);
    const auto image = std::make_shared<ImageFile>(path, use);
    if (changes.imageSize != image->Size())
        throw ImageError(backup + ": the backup of an image of another size");
    const ImageChange made = image->MadeOf(changes);
    CheckMayChangeVolumes(image, made);
    const bool isUndone = image->Undo(made);
    CommitOrThrow(*image);
    return {isUndone, image->Backup(), image->Notes()};
}

RepairedTable RepairImageTable(const std::string& path, const ImageUse& use) {
    ImageFile image(path, use);
    std::vector<std::string> problems = RepairTable(image);
    CommitOrThrow(image);
    return {std::move(problems), image.Backup(), image.Notes()};
}

Recovery RecoverImage(const std::string& path, const ImageUse& use) {
    ImageUse withoutBackup = use;
    withoutBackup.backup = {JournalPlace::Kind::None};
    return ImageFile(path, withoutBackup).Recovered();
}

}  // namespace machine
