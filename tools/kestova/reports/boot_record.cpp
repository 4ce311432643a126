#include "tools/kestova/reports/boot_record.h"

#include <algorithm>
#include <array>

#include "base/utf.h"
#include "manager/factory_layout.h"
#include "manager/system_volume_ini.h"
#include "tools/kestova/reports/switch_check.h"

namespace {

std::string Partition(int number) {
    return "partition " + std::to_string(number);
}

// Without a record, or with an unreadable one, `boot system` makes the partition of the system active; it
// leaves a PC alone that has no record and does not boot its recovery partition.
void AddTarget(const StatusReport& status, RecordReport& record) {
    if (!status.activePartition) return;
    if (record.exists)
        record.bootSystem = record.recorded.value_or(mbr_layout::system);
    else if (*status.activePartition == mbr_layout::recovery)
        record.bootSystem = mbr_layout::system;
}

// Why `boot system` does not come to the record: what it needs of the recovery partition first.
std::optional<std::string> WhyRefused(Session& session, int disk) {
    constexpr std::array needed = {"recoveryPartition", "recoveryLetter", "recoveryFiles"};
    for (const Finding& reason : WhySwitchRefused(session, disk)) {
        if (std::ranges::count(needed, reason.code) != 0) return reason.text;
    }
    return std::nullopt;
}

std::string Held(const RecordReport& record) {
    if (!record.exists) return "none";
    return record.recorded ? Partition(*record.recorded) : "no number";
}

std::string Words(const StatusReport& status, const RecordReport& record) {
    const std::string held = Held(record);
    if (!status.activePartition) return held + "; boot system needs one active partition";
    if (!record.bootSystem) return held + "; boot system changes nothing";
    const bool isThere =
        std::ranges::count(status.partitions, *record.bootSystem, &PartitionReport::number) != 0;
    return held + "; boot system makes " + Partition(*record.bootSystem) + " active" +
           (isThere ? "" : ", which is not there");
}

RecordReport ReadAt(WCHAR letter, const StatusReport& status) {
    const WideString file = WideString(1, letter) + TEXT(":\\") + systemVolumeIni;
    RecordReport record{.partition = mbr_layout::recovery, .exists = PathFileExistsW(file.c_str()) != FALSE};
    int recorded = 0;
    if (record.exists && ReadRecordedPartition(file.c_str(), recorded)) record.recorded = recorded;
    AddTarget(status, record);
    record.words = Words(status, record);
    return record;
}

std::optional<RecordReport> FindRecord(const StatusReport& status, Session& session) {
    const auto partition =
        std::ranges::find(status.partitions, mbr_layout::recovery, &PartitionReport::number);
    if (partition == status.partitions.end()) return std::nullopt;
    if (partition->letter) return ReadAt(*partition->letter, status);
    std::optional<RecordReport> record;
    session.OnPc().LendLetter({.disk = *status.internalDisk, .partition = mbr_layout::recovery},
                              [&](char letter) { record = ReadAt(static_cast<WCHAR>(letter), status); });
    return record;
}

}  // namespace

std::optional<RecordReport> ReadRecord(const StatusReport& status, Session& session) {
    if (!status.internalDisk || status.style != "MBR") return std::nullopt;
    std::optional<RecordReport> record = FindRecord(status, session);
    if (!record) return std::nullopt;
    if (const auto why = WhyRefused(session, *status.internalDisk)) {
        record->bootSystem.reset();
        record->words = Held(*record) + "; boot system is refused: " + *why;
    }
    return record;
}
