#include "tools/kestova/pc/volume_place.h"

#include <algorithm>

#include "machine/facts/file_stores.h"
#include "machine/facts/letters.h"
#include "tools/kestova/common/text.h"

namespace {

using machine::LocatedVolume;

LocatedVolume OfLetter(machine::Pc& pc, char letter) {
    const LocatedVolume located = machine::FindLetter(pc, letter);
    if (located) return located;
    throw Failed(std::string("no volume has the letter ") + letter + "; there are " +
                 Joined(machine::UsedLetters(pc), ", ", [](char used) { return std::string(1, used); }));
}

machine::Disk& DiskOf(machine::Pc& pc, int number) {
    const auto disk = std::ranges::find(pc.disks, static_cast<uint32_t>(number), &machine::Disk::number);
    if (disk == pc.disks.end()) throw Failed("there is no disk " + std::to_string(number));
    return *disk;
}

LocatedVolume OfPartition(machine::Pc& pc, const VolumePlace& place) {
    machine::Disk& disk = DiskOf(pc, place.disk);
    const auto partition = std::ranges::find(disk.partitions, static_cast<uint32_t>(place.partition),
                                             &machine::Partition::number);
    if (partition == disk.partitions.end()) {
        const std::string numbers = Joined(disk.partitions, ", ", [](const machine::Partition& known) {
            return std::to_string(known.number);
        });
        throw Failed("there is no partition " + std::to_string(place.partition) + " on disk " +
                     std::to_string(place.disk) + ", which has " + (numbers.empty() ? "none" : numbers));
    }
    return {partition->volume ? &*partition->volume : nullptr, &*partition, &disk};
}

std::string NameOf(const VolumePlace& place) {
    if (place.letter != '\0') return std::string("the volume ") + place.letter + ":";
    return "partition " + std::to_string(place.partition) + " of disk " + std::to_string(place.disk);
}

// Empty if its files can be read.
std::string WhyUnreadable(const LocatedVolume& located) {
    if (!located) return "holds no volume";
    const machine::Volume& volume = *located.volume;
    const bool isOnImage = !volume.image.empty() || (located.disk != nullptr && located.disk->table);
    switch (machine::WhyUnreadable(volume)) {
        case machine::errorLockedVolume:
            return "is locked by BitLocker";
        case ERROR_UNRECOGNIZED_VOLUME:
            return "holds no file system that can be recognised";
        default:
            break;
    }
    if (isOnImage && !volume.store) return "holds a file system that is not read here: " + volume.fileSystem;
    return machine::IsDamaged(volume) ? "is damaged: let chkdsk repair it on a running Windows" : "";
}

}  // namespace

FoundVolume FindVolume(machine::Pc& pc, const VolumePlace& place) {
    const LocatedVolume located = place.letter != '\0' ? OfLetter(pc, place.letter) : OfPartition(pc, place);
    const std::string unreadable = WhyUnreadable(located);
    if (!unreadable.empty()) throw Failed(NameOf(place) + " " + unreadable);
    FoundVolume found;
    if (located.disk != nullptr) {
        found.disk = static_cast<int>(located.disk->number);
        found.partition = static_cast<int>(located.partition->number);
    }
    found.letters = located.volume->letters;
    found.files = located.volume->store;
    if (!found.files) found.files = std::make_shared<machine::TreeStore>(located.volume->files);
    return found;
}
