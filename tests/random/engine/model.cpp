#include "tests/random/engine/model.h"

#include <algorithm>
#include <functional>
#include <map>

#include "base/text_case.h"
#include "platform/partition_types.h"

namespace randomly {

namespace {

using machine::Disk;
using machine::DriveType;
using machine::Partition;
using machine::PartitionStyle;
using machine::Pc;
using machine::Volume;

// --- the facts ---

const Disk* DiskOf(const Pc& pc, int number) {
    const auto found = std::find_if(pc.disks.begin(), pc.disks.end(), [&](const Disk& disk) {
        return disk.number == static_cast<uint32_t>(number);
    });
    return found != pc.disks.end() ? &*found : nullptr;
}

const Partition* PartitionOf(const Disk* disk, int number) {
    if (disk == nullptr) return nullptr;
    const auto found = std::find_if(
        disk->partitions.begin(), disk->partitions.end(),
        [&](const Partition& partition) { return partition.number == static_cast<uint32_t>(number); });
    return found != disk->partitions.end() ? &*found : nullptr;
}

std::vector<const Volume*> VolumesOf(const Pc& pc) {
    std::vector<const Volume*> volumes;
    for (const Disk& disk : pc.disks) {
        for (const Partition& partition : disk.partitions) {
            if (partition.volume) volumes.push_back(&*partition.volume);
        }
    }
    for (const Volume& volume : pc.volumes)
        volumes.push_back(&volume);
    return volumes;
}

const Volume* VolumeOf(const Pc& pc, const std::string& letter) {
    for (const Volume* const volume : VolumesOf(pc)) {
        if (volume->letters.find(letter) != std::string::npos) return volume;
    }
    return nullptr;
}

std::string LetterOf(const Partition* partition) {
    const bool hasLetter = partition != nullptr && partition->volume && !partition->volume->letters.empty();
    return hasLetter ? partition->volume->letters.substr(0, 1) : "0";
}

// Not in the header: the style is that of the partitions, so a disk without any has an unknown one.
bool HasStyle(const Disk* disk, PartitionStyle style) {
    return disk != nullptr && !disk->partitions.empty() && disk->style == style;
}

bool IsMbr(const Disk* disk) {
    return HasStyle(disk, PartitionStyle::Mbr);
}

bool IsGpt(const Disk* disk) {
    return HasStyle(disk, PartitionStyle::Gpt);
}

bool HasType(const Disk* disk, int number, const GUID& type) {
    const Partition* const partition = PartitionOf(disk, number);
    return IsGpt(disk) && partition != nullptr && partition->gptType == type;
}

// Not in the header: the case of "System Reserved" does not count.
bool HasLabel(const Partition* partition, const char* label) {
    return partition != nullptr && partition->volume && partition->volume->label.value &&
           SameName(*partition->volume->label.value, label);
}

bool HasEfiSystemPartition(const Disk* disk) {
    return HasType(disk, 3, PARTITION_SYSTEM_GUID);
}

std::vector<int> ActivePartitions(const Disk* disk) {
    std::vector<int> numbers;
    if (!IsMbr(disk)) return numbers;
    for (const Partition& partition : disk->partitions) {
        if (partition.bootIndicator != 0) numbers.push_back(static_cast<int>(partition.number));
    }
    return numbers;
}

// --- an observation ---

class Judge {
  public:
    explicit Judge(const Observation& seen)
        : seen_(seen),
          disk(DiskOf(seen.before, seen.internalDisk)),
          diskAfter(DiskOf(seen.after, seen.internalDisk)) {}

    int Number() const { return std::get<int>(seen_.result); }
    std::string Text() const { return std::get<std::string>(seen_.result); }
    int Output(const char* name) const { return std::get<int>(ValueOf(seen_.outputs, name)); }
    std::string OutputText(const char* name) const {
        return std::get<std::string>(ValueOf(seen_.outputs, name));
    }
    int Argument(const char* name) const { return std::get<int>(ValueOf(seen_.arguments, name)); }
    const Pc& Before() const { return seen_.before; }
    const Pc& After() const { return seen_.after; }
    // The partition that the arguments name.
    const Disk* NamedDisk() const { return DiskOf(Before(), Argument("disk")); }
    const Partition* NamedPartition() const { return PartitionOf(NamedDisk(), Argument("partition")); }
    bool Unchanged() const { return Before().disks == After().disks; }

  private:
    const Observation& seen_;

  public:
    const Disk* const disk;  // the internal one
    const Disk* const diskAfter;
};

// Empty for true.
std::string Require(bool holds, const char* what) {
    return holds ? "" : what;
}

using Rule = std::function<std::string(const Judge&)>;

// --- disks and partitions ---

std::string InternalDisk(const Judge& seen) {
    return Require(seen.Number() == -1 || DiskOf(seen.Before(), seen.Number()) != nullptr, "no such disk");
}

std::string Style(const Judge& seen) {
    const int style = IsMbr(seen.disk) ? 1 : IsGpt(seen.disk) ? 2 : 0;
    return Require(seen.Number() == 1 && (seen.Output("style") == style || seen.disk == nullptr),
                   "not the style of the internal disk");
}

std::string Layout(const Judge& seen) {
    const Partition* const second = PartitionOf(seen.disk, 2);
    const Partition* const third = PartitionOf(seen.disk, 3);
    int type = 0;
    if (IsGpt(seen.disk)) type = third == nullptr ? 0 : HasEfiSystemPartition(seen.disk) ? 1 : 2;
    if (IsMbr(seen.disk) && second != nullptr && second->mbrType == MBR_ID_NTFS) type = 4;
    if (IsMbr(seen.disk) && HasLabel(second, "System Reserved"))
        type = second->mbrType == MBR_ID_NTFS ? 3 : 0;
    const int given = seen.Output("type");
    // A partition that is not there is undetermined, or anything else.
    const bool missing = IsGpt(seen.disk) && third == nullptr && given == 2;
    // Not in the header: without a letter the label cannot be read, and the layout is undetermined.
    const bool unread = type >= 3 && given == 0 && LetterOf(second) == "0";
    return Require(seen.Number() == 1 && (given == type || missing || unread), "not this layout");
}

std::string Firmware(const Judge& seen) {
    const bool uefi = seen.Before().firmware.kind == machine::FirmwareKind::Uefi;
    return Require(seen.Number() == (uefi ? 1 : 0), "not this firmware");
}

std::string PartitionLetter(const Judge& seen) {
    return Require(seen.Text() == LetterOf(seen.NamedPartition()), "not its letter");
}

std::string NeedsHiding(const Judge& seen) {
    const Partition* const partition = seen.NamedPartition();
    if (seen.NamedDisk() == nullptr) return Require(seen.Number() == 0, "there is no such disk");
    if (partition == nullptr) return Require(seen.Number() == 1, "there is no such partition");
    if (IsGpt(seen.NamedDisk())) {
        const bool hide = partition->gptType == ORVOBOOT_GUID ||
                          partition->gptType == PARTITION_SYSTEM_GUID ||
                          partition->gptType == PARTITION_MSFT_RESERVED_GUID;
        return Require(seen.Number() == (hide ? 1 : 0), "not what its type says");
    }
    // Not in the header: only a partition of an ordinary type has a label.
    const bool hide = HasLabel(partition, "System Reserved") && partition->mbrType == MBR_ID_NTFS;
    return Require(seen.Number() == (hide ? 1 : 0), "not what its label says");
}

std::string Hibernation(const Judge& seen) {
    const Partition* const partition = seen.NamedPartition();
    const bool is =
        partition != nullptr && IsMbr(seen.NamedDisk()) && partition->mbrType == MBR_ID_BIOS_HIBERNATION;
    return Require(seen.Number() == (is ? 1 : 0), "not what its ID says");
}

std::string MakeHibernation(const Judge& seen) {
    const Partition* const before = PartitionOf(seen.disk, seen.Argument("partition"));
    if (seen.Number() != 0) return Require(seen.Unchanged(), "failed and changed something");
    if (!IsMbr(seen.disk) || before == nullptr) return "success without an MBR partition";
    return Require(
        PartitionOf(seen.diskAfter, seen.Argument("partition"))->mbrType == MBR_ID_BIOS_HIBERNATION,
        "success without the ID");
}

std::string Active(const Judge& seen) {
    const std::vector<int> active = ActivePartitions(seen.disk);
    if (active.empty()) return Require(seen.Number() == -1, "none is active");
    return Require(std::find(active.begin(), active.end(), seen.Number()) != active.end(), "is not active");
}

std::string MakeActive(const Judge& seen) {
    const int number = seen.Argument("partition");
    const bool possible = IsMbr(seen.disk) && PartitionOf(seen.disk, number) != nullptr;
    if (seen.Number() != 0) return Require(!possible && seen.Unchanged(), "failed though it is possible");
    std::vector<int> expected = ActivePartitions(seen.disk);
    if (seen.Before().switches.activeFlagIsExclusive) expected.clear();
    if (std::find(expected.begin(), expected.end(), number) == expected.end()) expected.push_back(number);
    std::sort(expected.begin(), expected.end());
    std::vector<int> active = ActivePartitions(seen.diskAfter);
    std::sort(active.begin(), active.end());
    return Require(possible && active == expected, "not these flags");
}

std::string ClearFlags(const Judge& seen) {
    if (seen.Number() != 0) return Require(seen.Unchanged(), "failed and changed something");
    return Require(ActivePartitions(seen.diskAfter).empty(), "a flag stays");
}

// --- volumes ---

std::string FactoryLetter(const Judge& seen) {
    std::string first = "0";
    for (const Volume* const volume : VolumesOf(seen.Before())) {
        const bool labelled = volume->label.value && SameName(*volume->label.value, "Factory");
        for (const char letter : labelled ? volume->letters : "") {
            if (first == "0" || letter < first[0]) first = std::string(1, letter);
        }
    }
    return Require(seen.Number() == 1 && seen.OutputText("letter") == first, "not the first one");
}

Rule MediumOf(DriveType driveType) {
    return [driveType](const Judge& seen) {
        if (seen.Text() == "0") return std::string();
        const Volume* const volume = VolumeOf(seen.Before(), seen.Text());
        return Require(volume != nullptr && volume->driveType == driveType, "not such a drive");
    };
}

// --- letters on demand ---

Rule Activates(int number, const GUID& type) {
    return [number, type](const Judge& seen) {
        const bool isOfType = HasType(seen.disk, number, type);
        if (seen.Number() == 0)
            return Require(isOfType &&
                               seen.OutputText("letter") == LetterOf(PartitionOf(seen.diskAfter, number)) &&
                               seen.OutputText("letter") != "0",
                           "success without its letter");
        if (seen.Number() == 113)
            return Require(!isOfType && PartitionOf(seen.disk, number) != nullptr, "it is of that type");
        return Require(seen.OutputText("letter") == "0", "the letter is not unchanged");
    };
}

Rule Deactivates(int number) {
    return [number](const Judge& seen) {
        if (seen.Number() != 0) return Require(seen.Unchanged(), "failed and changed something");
        const Partition* const after = PartitionOf(seen.diskAfter, number);
        const Partition* const before = PartitionOf(seen.disk, number);
        // Not in the header: a letter that the platform keeps to the volume counts as none.
        const bool refused = before != nullptr && seen.Before().switches.volumesRefuseLetterCalls &&
                             (IsMbr(seen.disk) ? before->mbrType == MBR_ID_NTFS
                                               : before->gptType == PARTITION_BASIC_DATA_GUID);
        const bool had = LetterOf(before) != "0" && !refused;
        return Require(!had || LetterOf(after) != LetterOf(before), "the letter stays");
    };
}

std::string Assigns(const Judge& seen) {
    const std::string letter = seen.OutputText("letter");
    if (letter == "0") return Require(seen.Number() == 1, "not asked");
    bool found = false;
    for (int number = 1; number < 9; ++number)
        found = found || LetterOf(PartitionOf(seen.diskAfter, number)) == letter;
    return Require(seen.Number() == 1 && IsGpt(seen.disk) && found, "the letter of no partition of the disk");
}

std::string AssignsWinRe(const Judge& seen) {
    const std::string letter = seen.OutputText("letter");
    return Require(letter == "0" || letter == LetterOf(PartitionOf(seen.diskAfter, 2)), "not of partition 2");
}

// --- encryption and the installed Windows ---

std::vector<std::string> EncryptedLetters(const Pc& pc) {
    std::vector<std::string> letters;
    if (!pc.encryptableVolumes) return letters;
    for (const machine::EncryptableVolume& volume : *pc.encryptableVolumes) {
        if (volume.encryptionMethod != 0)
            letters.push_back(volume.driveLetter ? volume.driveLetter->substr(0, 1) : std::string(1, '\0'));
    }
    return letters;
}

std::string BitLockerAsked(const Judge& seen) {
    return Require(seen.Number() == (seen.Before().encryptableVolumes ? 1 : 0), "not what the provider says");
}

std::string OnlyEncrypted(const Judge& seen) {
    const std::vector<std::string> letters = EncryptedLetters(seen.Before());
    return Require(seen.Text() == (letters.size() == 1 ? letters[0] : "0"), "not the only one");
}

std::string AllEncrypted(const Judge& seen) {
    std::string all;
    for (const std::string& letter : EncryptedLetters(seen.Before())) {
        if (letter[0] != '\0') all += letter;
    }
    all = all.substr(0, static_cast<size_t>(std::max(seen.Argument("size") - 1, 0)));
    const bool asked = seen.Before().encryptableVolumes.has_value();
    return Require(seen.Number() == (asked ? 1 : 0) && (seen.OutputText("buffer") == all),
                   "not these letters");
}

std::string SystemPartition(const Judge& seen) {
    const bool exists = HasEfiSystemPartition(seen.disk);
    if (seen.Number() != 0) return Require(!exists, "it is there");
    const int diskNumber = exists ? static_cast<int>(seen.disk->number) : -1;
    return Require(seen.Output("disk") == diskNumber && seen.Output("partition") == (exists ? 3 : -1) &&
                       seen.OutputText("letter") == "0",
                   "not this place");
}

std::string InstalledWindows(const Judge& seen) {
    if (seen.Number() != 0)
        return Require(
            seen.Output("disk") == -1 && seen.Output("partition") == -1 && seen.OutputText("letter") == "0",
            "a failure with a place");
    return Require(HasEfiSystemPartition(seen.disk) && seen.Output("partition") == 5 &&
                       seen.Output("disk") == static_cast<int>(seen.disk->number) &&
                       seen.OutputText("letter") == LetterOf(PartitionOf(seen.disk, 5)),
                   "not the place of partition 5");
}

// --- switches ---

Rule Switches(int target) {
    return [target](const Judge& seen) {
        if (seen.Number() != 0) return std::string();
        const std::vector<int> active = ActivePartitions(seen.diskAfter);
        return Require(std::find(active.begin(), active.end(), target) != active.end(),
                       "success without the flag");
    };
}

std::string SwitchesBack(const Judge& seen) {
    if (seen.Number() != 0) return "";
    const Partition* const recovery = PartitionOf(seen.diskAfter, 1);
    const bool recorded = recovery != nullptr && recovery->volume &&
                          recovery->volume->files.Find("SystemVolume.ini") != nullptr;
    return Require(!recorded && !ActivePartitions(seen.diskAfter).empty(), "success and the record stays");
}

const std::map<std::string, Rule> rules = {
    {"GetFirstInternalDriveNumber", InternalDisk},
    {"GetDiskStyle", Style},
    {"GetCurrentDiskType", Layout},
    {"IsEFIBootSystem", Firmware},
    {"GetDriveLetter", PartitionLetter},
    {"IsNeedHidePartition", NeedsHiding},
    {"IsBIOSHibernationPartition", Hibernation},
    {"SetBIOSHibernationPartitionID", MakeHibernation},
    {"GetActivePartitionNumber", Active},
    {"SetActive", MakeActive},
    {"ClearActive", ClearFlags},
    {"GetFactoryPrtDriveLetter", FactoryLetter},
    {"GetRCVDISC", MediumOf(DriveType::Optical)},
    {"GetRCVUFD", MediumOf(DriveType::Removable)},
    {"ActiveOrvoBootPartition", Activates(1, ORVOBOOT_GUID)},
    {"ActiveGPTSystemPartition", Activates(3, PARTITION_SYSTEM_GUID)},
    {"DisableOrvoBootPartition", Deactivates(1)},
    {"DisableGPTSystemPartition", Deactivates(3)},
    {"AssignRecoveryPartition", Assigns},
    {"AssignWinREPartition", AssignsWinRe},
    {"IsExistEncryptVolume", BitLockerAsked},
    {"GetEncryptVolume", OnlyEncrypted},
    {"GetAllEncryptVolume", AllEncrypted},
    {"GetBitLockerSystemInfo", SystemPartition},
    {"GetVistaOSInfo", InstalledWindows},
    {"SetRcvprtActive", Switches(1)},
    {"SetPOneActive", Switches(1)},
    {"SetPTwoActive", Switches(2)},
    {"SetSystemActive", SwitchesBack},
};

// Of every operation: its result is listed, a question changes no disk, a change changes one.
std::string General(const Observation& seen) {
    const bool listed = seen.operation.results.empty()
                            ? IsNothing(seen.result)
                            : FindMeaning(seen.operation.results, seen.result) != nullptr;
    if (!listed && *seen.operation.otherwise == '\0') return "an unlisted result";
    for (size_t at = 0; at < seen.before.disks.size(); ++at) {
        const bool internal = seen.before.disks[at].number == static_cast<uint32_t>(seen.internalDisk);
        if (seen.before.disks[at] == seen.after.disks[at]) continue;
        if (!seen.operation.changesPc) return "a question that changes a disk";
        if (!internal) return "another disk than the internal one changes";
    }
    return "";
}

}  // namespace

std::string Contradiction(const Observation& seen) {
    std::string general = General(seen);
    if (!general.empty()) return general;
    const auto rule = rules.find(seen.operation.name);
    return rule != rules.end() ? rule->second(Judge(seen)) : "";
}

}  // namespace randomly
