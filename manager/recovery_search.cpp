// Finding the recovery partition and the Windows RE partition of the first internal disk.

#include "diag/failure_record.h"
#include "manager/factory_layout.h"
#include "manager/kestova.h"
#include "vds/vds_partition.h"

namespace {

constexpr int partitionCapacity = 128;

// The records of a search. Some texts name another operation or class.
struct Search {
    const WCHAR* start;
    int noVolumeLayerLevel;
    const WCHAR* noVolumeLayer;
    const WCHAR* noInternalDisk;
    const WCHAR* diskNotSelected;
    const WCHAR* partitionNotSelected;
    const WCHAR* otherPartition;
    const WCHAR* end;
    const WCHAR* exists;
};

constexpr Search recoverySearch = {
    .start = TEXT("Kestova Kestova::IsExistRecoveryPartition\tStart"),
    .noVolumeLayerLevel = LOG_LEVEL_TRACE,
    .noVolumeLayer = TEXT("Kestova Kestova::IsExistRecoveryPartition    m_pVDSPartition == NULL"),
    .noInternalDisk =
        TEXT("Kestova Kestova::IsExistRecoveryPartition\tGetFirstInternalDriveNumber return false"),
    .diskNotSelected = TEXT("Kestova Kestova::IsExistRecoveryPartition\tSelectDisk return false"),
    .partitionNotSelected = TEXT("Kestova Kestova::IsExistRecoveryPartition\tSelectPartition return false"),
    .otherPartition =
        TEXT("Kestova Kestova::IsExistRecoveryPartition partition type is not recovery partition"),
    .end = TEXT("Kestova Kestova::IsExistRecoveryPartition\tEnd. bRet = "),
    .exists = TEXT(" bExistRecoveryPartition: "),
};

constexpr Search winReSearch = {
    .start = TEXT("Kestova Kestova::IsExistWinREPartition\tStart"),
    .noVolumeLayerLevel = LOG_LEVEL_ERROR,
    .noVolumeLayer = TEXT("Kestova Kestova::IsExistWinREPartition    m_pVDSPartition == NULL"),
    .noInternalDisk =
        TEXT("Kestova CVDSPartition::IsExistWinREPartition GetFirstInternalDriveNumber return false"),
    .diskNotSelected = TEXT("Kestova CVDSPartition::IsExistWinREPartition SelectDisk return false"),
    .partitionNotSelected = TEXT("Kestova CVDSPartition::IsExistWinREPartition SelectPartition return false"),
    .otherPartition = TEXT("Kestova Kestova::IsExistWinREPartition partition type is not recovery partition"),
    .end = TEXT("Kestova Kestova::IsExistWinREPartition\tEnd. bRet = "),
    .exists = TEXT(" bExistWinREPartition: "),
};

bool SelectFirstInternalDisk(CVDSPartition* partitions, const Search& row, int& disk) {
    if (partitions == nullptr) return LogFailure(row.noVolumeLayerLevel, row.noVolumeLayer, FALSE);
    if (!partitions->GetFirstInternalDriveNumber(disk))
        return LogFailure(LOG_LEVEL_ERROR, row.noInternalDisk, FALSE);
    if (!partitions->SelectDisk(disk)) return LogFailure(LOG_LEVEL_ERROR, row.diskNotSelected, FALSE);
    return true;
}

bool SelectPartition(CVDSPartition& partitions, const Search& row, int partition) {
    if (partitions.SelectPartition(partition)) return true;
    return LogFailure(LOG_LEVEL_ERROR, row.partitionNotSelected, FALSE);
}

// Disk and partition are set only if the walk finds the partition. The End record contains 0 where other
// operations write their result, which is always 1 here.
template <typename Walk>
int RunSearch(CVDSPartition* partitions, const Search& row, int& disk, int& partition, int& exists,
              const Walk& walk) {
    LogRecord(LOG_LEVEL_TRACE).Text(row.start);
    disk = noDisk;
    partition = noPartition;
    exists = 0;
    if (SelectFirstInternalDisk(partitions, row, disk)) walk(*partitions);
    if (!exists) {
        disk = noDisk;
        partition = noPartition;
    }
    LogRecord(LOG_LEVEL_TRACE)
        .Text(row.end)
        .Int(0)
        .Text(TEXT(" iDiskNumber: "))
        .Int(disk)
        .Text(TEXT(" iPartitionNumber: "))
        .Int(partition)
        .Text(row.exists)
        .Int(exists);
    return 1;
}

}  // namespace

int Kestova::IsExistRecoveryPartition(int& disk, int& partition, int& exists) {
    const auto walk = [&](CVDSPartition& partitions) {
        int numbers[partitionCapacity] = {};
        if (!partitions.GetTotalPartitionNumbers(numbers, partitionCapacity)) {
            LogFailure(
                LOG_LEVEL_ERROR,
                TEXT("Kestova Kestova::GetTotalPartitionNumbers\tGetTotalPartitionNumbers return false"),
                FALSE);
            return;
        }
        for (const int number : numbers) {
            if (number == 0) return;
            partition = number;
            if (!SelectPartition(partitions, recoverySearch, number)) continue;
            if (!IsRecoveryPartition(disk, number, exists)) {
                LogFailure(LOG_LEVEL_ERROR, recoverySearch.otherPartition, FALSE);
            } else if (exists) {
                return;
            }
        }
    };
    return RunSearch(m_pVDSPartition, recoverySearch, disk, partition, exists, walk);
}

int Kestova::IsExistWinREPartition(int& disk, int& partition, int& exists) {
    const auto walk = [&](CVDSPartition& partitions) {
        partition = gpt_layout::windowsRe;
        if (!SelectPartition(partitions, winReSearch, gpt_layout::windowsRe)) return;
        if (!IsWinREPartition(disk, gpt_layout::windowsRe, exists))
            LogFailure(LOG_LEVEL_ERROR, winReSearch.otherPartition, FALSE);
    };
    return RunSearch(m_pVDSPartition, winReSearch, disk, partition, exists, walk);
}
