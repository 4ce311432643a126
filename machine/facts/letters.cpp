#include "machine/facts/letters.h"

#include <set>

#include "base/text_case.h"

namespace machine {

namespace {

bool HasLetter(const Volume& volume, char letter) {
    return volume.letters.find(UpperCase({&letter, 1})) != std::string::npos;
}

}  // namespace

LocatedVolume FindLetter(Pc& pc, char letter) {
    for (Disk& disk : pc.disks) {
        for (Partition& partition : disk.partitions) {
            if (partition.volume && HasLetter(*partition.volume, letter)) {
                return {&*partition.volume, &partition, &disk};
            }
        }
    }
    for (Volume& volume : pc.volumes) {
        if (HasLetter(volume, letter)) return {&volume, nullptr, nullptr};
    }
    return {};
}

uint32_t WhyUnreadable(const Volume& volume) {
    if (volume.fileSystem == "RAW") return ERROR_UNRECOGNIZED_VOLUME;
    return volume.fileSystem == "BitLocker" ? errorLockedVolume : uint32_t{ERROR_SUCCESS};
}

bool IsDamaged(const Volume& volume) {
    return volume.store && volume.store->Find("") != FileKind::Folder;
}

std::string UsedLetters(const Pc& pc) {
    std::set<char> letters;
    for (const Disk& disk : pc.disks) {
        for (const Partition& partition : disk.partitions) {
            if (partition.volume)
                letters.insert(partition.volume->letters.begin(), partition.volume->letters.end());
        }
    }
    for (const Volume& volume : pc.volumes)
        letters.insert(volume.letters.begin(), volume.letters.end());
    return {letters.begin(), letters.end()};
}

}  // namespace machine
