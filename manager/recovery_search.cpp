// Finding the recovery partition and the Windows RE partition of the first internal disk.

#include "diag/log_record.h"
#include "manager/kestova.h"
#include "vds/vds_partition.h"

namespace {

constexpr int none = -1;
constexpr int winRePartition = 2;
constexpr int partitionCapacity = 128;

// What a search writes. Some texts name another operation or class than their own.
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

bool Failed(const WCHAR* text, int level = LOG_LEVEL_ERROR) {
    LogRecord(level).Text(text);
    return false;
}

bool SelectFirstInternalDisk(CVDSPartition* partitions, const Search& row, int& disk) {
    if (partitions == nullptr) return Failed(row.noVolumeLayer, row.noVolumeLayerLevel);
    if (!partitions->GetFirstInternalDriveNumber(disk)) return Failed(row.noInternalDisk);
    return partitions->SelectDisk(disk) || Failed(row.diskNotSelected);
}

bool SelectPartition(CVDSPartition& partitions, const Search& row, int partition) {
    return partitions.SelectPartition(partition) || Failed(row.partitionNotSelected);
}

// Begins with nothing found, and ends with it unless the walk came to the partition. The record tells 0
// where other operations tell their result, which is 1 here whatever was found.
template <typename Walk>
int RunSearch(CVDSPartition* partitions, const Search& row, int& disk, int& partition, int& exists,
              const Walk& walk) {
    LogRecord(LOG_LEVEL_TRACE).Text(row.start);
    disk = none;
    partition = none;
    exists = 0;
    if (SelectFirstInternalDisk(partitions, row, disk)) walk(*partitions);
    if (!exists) {
        disk = none;
        partition = none;
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
            Failed(TEXT("Kestova Kestova::GetTotalPartitionNumbers\tGetTotalPartitionNumbers return false"));
            return;
        }
        for (const int number : numbers) {
            if (number == 0) return;
            partition = number;
            if (!SelectPartition(partitions, recoverySearch, number)) continue;
            if (!IsRecoveryPartition(disk, number, exists)) {
                Failed(recoverySearch.otherPartition);
            } else if (exists) {
                return;
            }
        }
    };
    return RunSearch(m_pVDSPartition, recoverySearch, disk, partition, exists, walk);
}

int Kestova::IsExistWinREPartition(int& disk, int& partition, int& exists) {
    const auto walk = [&](CVDSPartition& partitions) {
        partition = winRePartition;
        if (!SelectPartition(partitions, winReSearch, winRePartition)) return;
        if (!IsWinREPartition(disk, winRePartition, exists)) Failed(winReSearch.otherPartition);
    };
    return RunSearch(m_pVDSPartition, winReSearch, disk, partition, exists, walk);
}
