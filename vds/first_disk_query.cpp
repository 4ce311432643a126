#include "vds/first_disk_query.h"

BOOL QueryFirstDisk(CVDSPartition& partition, const FirstDiskTexts& texts, PartitionList& partitions) {
    if (CheckService(partition.GetService(), texts.service) != S_OK) return FALSE;
    const BOOL bReturn = partition.QueryPartitions(partitions.PutRecords(), partitions.PutCount());
    if (!bReturn) LogFailure(texts.service.level, texts.noPartitions, bReturn);
    return bReturn;
}
