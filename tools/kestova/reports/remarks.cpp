#include "tools/kestova/reports/remarks.h"

#include <algorithm>
#include <array>

#include "tools/kestova/common/partition_words.h"
#include "tools/kestova/reports/disk_layout.h"

namespace {

using Layout = std::vector<PARTITION_INFORMATION_EX>;

// FAT and NTFS types with the bit that hides them.
constexpr std::array<BYTE, 7> hiddenTypes = {0x11, 0x14, 0x16, 0x17, 0x1B, 0x1C, 0x1E};

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
        if (!IsActive(entry) || std::ranges::count(hiddenTypes, entry.Mbr.PartitionType) == 0) continue;
        remarks.push_back({"hiddenActive",
                           "partition " + std::to_string(entry.PartitionNumber) + " is active and hidden (" +
                               MbrTypeWords(entry.Mbr.PartitionType) + "); a Windows on it does not start"});
    }
}

}  // namespace

std::vector<Finding> RemarksOn(OpenedPc& pc, int disk) {
    std::vector<Finding> remarks;
    pc.Aside([&] {
        const auto layout = ReadDiskLayout(disk);
        if (!layout) return;
        AddActiveFlags(pc, *layout, remarks);
        AddHidden(*layout, remarks);
    });
    return remarks;
}

std::vector<Finding> RemarksOn(OpenedPc& pc) {
    constexpr int mostDisks = 32;
    std::vector<Finding> all;
    for (int disk = 0; disk < mostDisks; ++disk) {
        for (Finding& remark : RemarksOn(pc, disk)) {
            if (disk > 0) remark.text = "disk " + std::to_string(disk) + ": " + remark.text;
            all.push_back(std::move(remark));
        }
    }
    return all;
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
