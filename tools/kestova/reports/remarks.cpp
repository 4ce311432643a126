#include "tools/kestova/reports/remarks.h"

#include <algorithm>

#include "base/hexadecimal.h"
#include "base/utf.h"
#include "manager/factory_layout.h"
#include "manager/system_volume_ini.h"
#include "platform/partition_types.h"
#include "tools/kestova/reports/disk_layout.h"

namespace {

constexpr int mostPrimaries = 4;

using Layout = std::vector<PARTITION_INFORMATION_EX>;

void AddActiveFlags(const OpenedPc& pc, const Layout& layout, std::vector<Finding>& remarks) {
    const auto active = std::ranges::count_if(layout, IsActive);
    if (active < 2) return;
    const char* const why = pc.KeepsActiveFlags()
                                ? "; the description's activeFlagIsExclusive is false, so others keep theirs"
                                : "";
    remarks.push_back(
        {"twoActiveFlags",
         std::to_string(active) + " partitions are active; a PC starts from a disk with one only" + why});
}

void AddHidden(const Layout& layout, std::vector<Finding>& remarks) {
    for (const PARTITION_INFORMATION_EX& entry : layout) {
        if (!IsActive(entry) || !HasHiddenBit(entry.Mbr.PartitionType)) continue;
        remarks.push_back({"hiddenActive", "partition " + std::to_string(entry.PartitionNumber) +
                                               " is active and hidden (type " +
                                               Hex(entry.Mbr.PartitionType, 2) +
                                               "); a Windows on it does not start"});
    }
}

void AddHibernation(const Layout& layout, std::vector<Finding>& remarks) {
    for (const PARTITION_INFORMATION_EX& entry : layout) {
        if (!IsActive(entry) || entry.Mbr.PartitionType != MBR_ID_BIOS_HIBERNATION) continue;
        remarks.push_back(
            {"hibernationActive", "partition " + std::to_string(entry.PartitionNumber) +
                                      " is active and for hibernation; no system starts from it"});
    }
}

// On an image the slot shows it.
bool IsLogical(const OpenedPc& pc, int disk, int partition) {
    const std::vector<PartitionFacts> facts = pc.FactsOf(disk).partitions;
    const auto found = std::ranges::find(facts, partition, &PartitionFacts::number);
    if (found != facts.end() && found->slot) return *found->slot > mostPrimaries;
    return std::ranges::count(LogicalPartitions(disk), partition) != 0;
}

void AddLogical(const OpenedPc& pc, int disk, const Layout& layout, std::vector<Finding>& remarks) {
    for (const PARTITION_INFORMATION_EX& entry : layout) {
        const int number = static_cast<int>(entry.PartitionNumber);
        if (!IsActive(entry) || !IsLogical(pc, disk, number)) continue;
        remarks.push_back(
            {"logicalActive", "partition " + std::to_string(number) +
                                  " is active and a logical one; a PC starts from primary partitions only"});
    }
}

void AddRecord(OpenedPc& pc, int disk, const Layout& layout, std::vector<Finding>& remarks) {
    int recorded = 0;
    bool isRecorded = false;
    pc.LendLetter({.disk = disk, .partition = mbr_layout::recovery}, [&](char letter) {
        const WideString file = WideString(1, static_cast<WCHAR>(letter)) + TEXT(":\\") + systemVolumeIni;
        isRecorded = ReadRecordedPartition(file.c_str(), recorded);
    });
    if (!isRecorded) return;
    const auto target =
        std::ranges::find(layout, static_cast<DWORD>(recorded), &PARTITION_INFORMATION_EX::PartitionNumber);
    if (target == layout.end() || target->PartitionStyle != PARTITION_STYLE_MBR ||
        target->Mbr.PartitionType != MBR_ID_BIOS_HIBERNATION)
        return;
    remarks.push_back(
        {"recordAtHibernation", ToUtf8(systemVolumeIni) + " names partition " + std::to_string(recorded) +
                                    ", which is for hibernation; boot system makes that active"});
}

}  // namespace

std::vector<Finding> RemarksOn(OpenedPc& pc, int disk) {
    std::vector<Finding> remarks;
    pc.Aside([&] {
        const auto layout = ReadDiskLayout(disk);
        if (!layout) return;
        AddActiveFlags(pc, *layout, remarks);
        AddHidden(*layout, remarks);
        AddHibernation(*layout, remarks);
        AddLogical(pc, disk, *layout, remarks);
        AddRecord(pc, disk, *layout, remarks);
    });
    return remarks;
}

std::vector<Finding> RemarksOn(OpenedPc& pc) {
    std::vector<std::pair<int, Finding>> found;
    int disks = 0;
    for (int disk = 0; disk < pc.DiskNumbersEnd(); ++disk) {
        pc.Aside([&] { disks += ReadDiskLayout(disk) ? 1 : 0; });
        for (Finding& remark : RemarksOn(pc, disk))
            found.emplace_back(disk, std::move(remark));
    }
    std::vector<Finding> all;
    for (auto& [disk, remark] : found) {
        if (disks > 1) remark.text = "disk " + std::to_string(disk) + ": " + remark.text;
        all.push_back(std::move(remark));
    }
    return all;
}

std::optional<Finding> StillRecovery(OpenedPc& pc, int disk) {
    std::optional<Finding> remark;
    pc.Aside([&] {
        const Layout layout = ReadDiskLayout(disk).value_or(Layout());
        const auto active = std::ranges::find_if(layout, IsActive);
        if (active == layout.end() || active->PartitionNumber != mbr_layout::recovery) return;
        remark = {"recoveryStaysActive", "partition " + std::to_string(mbr_layout::recovery) +
                                             " is active still, so this PC starts its recovery again; " +
                                             ToUtf8(systemVolumeIni) + " named it"};
    });
    return remark;
}

std::vector<Finding> UnmetFaults(const std::vector<FaultCount>& faults) {
    std::vector<Finding> remarks;
    for (const FaultCount& fault : faults) {
        if (fault.met > 0) continue;
        const std::string calls = fault.calls == 0 ? "there was no such call"
                                  : fault.calls == 1
                                      ? "there was 1 such call"
                                      : "there were " + std::to_string(fault.calls) + " such calls";
        remarks.push_back({"faultNeverMet", "--fail " + fault.fault + " was never met: " + calls});
    }
    return remarks;
}
