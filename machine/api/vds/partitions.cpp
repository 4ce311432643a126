// The partitions of a disk: their properties and letters.
#include <algorithm>

#include "machine/api/com/memory.h"
#include "machine/api/vds/disk.h"
#include "machine/facts/extent_type.h"
#include "machine/facts/letters.h"

namespace machine {

namespace {

VDS_PARTITION_PROP RecordOf(const Disk& disk, const Partition& partition) {
    VDS_PARTITION_PROP record{};
    record.PartitionStyle = VdsStyle(disk.style);
    record.ulPartitionNumber = partition.number;
    record.ullOffset = partition.offset;
    record.ullSize = partition.size;
    if (disk.style == PartitionStyle::Mbr) {
        record.Mbr.partitionType = partition.mbrType;
        record.Mbr.bootIndicator = partition.bootIndicator;
        record.Mbr.recognizedPartition = ExtentTypeOf(disk.style, partition) == VDS_DET_DATA;
        record.Mbr.hiddenSectors = static_cast<DWORD>(partition.offset / 512);
    } else if (disk.style == PartitionStyle::Gpt) {
        record.Gpt.partitionType = partition.gptType;
        record.Gpt.partitionId = partition.gptId;
        record.Gpt.attributes = partition.attributes;
        const WideString name = ToWide(partition.name);
        std::copy_n(name.begin(), std::min(name.size(), std::size(record.Gpt.name)), record.Gpt.name);
    }
    return record;
}

// The letter in upper case, or 0 for any other character.
char UpperLetter(WCHAR letter) {
    if (letter >= TEXT('a') && letter <= TEXT('z')) return static_cast<char>(letter - TEXT('a') + 'A');
    if (letter >= TEXT('A') && letter <= TEXT('Z')) return static_cast<char>(letter);
    return 0;
}

std::string LetterText(WCHAR letter) {
    return ToUtf8(WideView(&letter, 1));
}

// Finds the partition of a letter call, or returns the code that rejects the call.
HRESULT FindLetterable(EmulatedPc& pc, uint32_t diskNumber, uint64_t offset, Partition*& partition) {
    Disk* const disk = FindDisk(pc.facts, diskNumber);
    if (disk == nullptr) return VDS_E_OBJECT_DELETED;
    partition = FindPartition(*disk, offset);
    if (partition == nullptr) return VDS_E_OBJECT_NOT_FOUND;
    if (!pc.facts.switches.volumesRefuseLetterCalls) return S_OK;
    switch (ExtentTypeOf(disk->style, *partition)) {
        case VDS_DET_OEM:
        case VDS_DET_ESP:
        case VDS_DET_UNKNOWN:
            return S_OK;
        default:
            return VDS_E_INVALID_OPERATION;
    }
}

HRESULT AnswerLetterless(Switches::Letterless answer, WCHAR& letter) {
    if (answer == Switches::Letterless::Fails) return VDS_E_OBJECT_NOT_FOUND;
    letter = answer == Switches::Letterless::Nul ? TEXT('\0') : TEXT('0');
    return S_OK;
}

}  // namespace

HRESULT VdsDisk::QueryPartitions(VDS_PARTITION_PROP** partitions, LONG* count) {
    Empty(partitions);
    Empty(count);
    return AsAdvancedDisk::Call(
        "IVdsAdvancedDisk::QueryPartitions", {DiskText(number_)}, [&](EmulatedPc& pc) {
            if (partitions == nullptr || count == nullptr) return E_POINTER;
            const Disk* const disk = FindDisk(pc.facts, number_);
            if (disk == nullptr) return VDS_E_OBJECT_DELETED;
            if (!HasTable(*disk)) return VDS_E_DISK_NOT_INITIALIZED;
            if (disk->partitions.empty() && !pc.facts.switches.emptyTableLendsArray) return S_FALSE;
            *partitions =
                LendRecords<VDS_PARTITION_PROP>(pc, "VDS_PARTITION_PROP array", disk->partitions.size());
            *count = static_cast<LONG>(disk->partitions.size());
            std::transform(disk->partitions.begin(), disk->partitions.end(), *partitions,
                           [&](const Partition& partition) { return RecordOf(*disk, partition); });
            return disk->partitions.empty() ? S_FALSE : S_OK;
        });
}

HRESULT VdsDisk::AssignDriveLetter(ULONGLONG offset, WCHAR letter) {
    return AsAdvancedDisk::Call(
        "IVdsAdvancedDisk::AssignDriveLetter",
        {DiskText(number_), std::to_string(offset), LetterText(letter)}, [&](EmulatedPc& pc) {
            Partition* partition = nullptr;
            const HRESULT refusal = FindLetterable(pc, number_, offset, partition);
            if (refusal != S_OK) return refusal;
            const char upper = UpperLetter(letter);
            if (upper == 0) return VDS_E_INVALID_DRIVE_LETTER;
            if (const LocatedVolume holder = FindLetter(pc.facts, upper))
                return holder.partition == partition ? S_OK : VDS_E_DRIVE_LETTER_NOT_FREE;
            if (!partition->volume) partition->volume.emplace().fileSystem = "RAW";
            partition->volume->letters += upper;
            return S_OK;
        });
}

HRESULT VdsDisk::DeleteDriveLetter(ULONGLONG offset, WCHAR letter) {
    return AsAdvancedDisk::Call("IVdsAdvancedDisk::DeleteDriveLetter",
                                {DiskText(number_), std::to_string(offset), LetterText(letter)},
                                [&](EmulatedPc& pc) {
                                    Partition* partition = nullptr;
                                    const HRESULT refusal = FindLetterable(pc, number_, offset, partition);
                                    if (refusal != S_OK) return refusal;
                                    const char upper = UpperLetter(letter);
                                    if (upper == 0 || FindLetter(pc.facts, upper).partition != partition)
                                        return VDS_E_INVALID_DRIVE_LETTER;
                                    std::erase(partition->volume->letters, upper);
                                    return S_OK;
                                });
}

HRESULT VdsDisk::GetDriveLetter(ULONGLONG offset, WCHAR* letter) {
    return AsAdvancedDisk::Call("IVdsAdvancedDisk::GetDriveLetter",
                                {DiskText(number_), std::to_string(offset)}, [&](EmulatedPc& pc) {
                                    if (letter == nullptr) return E_POINTER;
                                    Partition* partition = nullptr;
                                    const HRESULT refusal = FindLetterable(pc, number_, offset, partition);
                                    if (refusal != S_OK) return refusal;
                                    if (!partition->volume || partition->volume->letters.empty())
                                        return AnswerLetterless(pc.facts.switches.letterless, *letter);
                                    *letter = static_cast<WCHAR>(partition->volume->letters.front());
                                    return S_OK;
                                });
}

}  // namespace machine
