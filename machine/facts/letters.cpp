#include "machine/facts/letters.h"

#include <set>

namespace machine {

namespace {

bool HasLetter(const Volume& volume, char letter) {
    const char upper = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    return volume.letters.find(upper) != std::string::npos;
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
    constexpr uint32_t lockedVolume = 0x80310000;  // FVE_E_LOCKED_VOLUME
    if (volume.fileSystem == "RAW") return ERROR_UNRECOGNIZED_VOLUME;
    return volume.fileSystem == "BitLocker" ? lockedVolume : uint32_t{ERROR_SUCCESS};
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
