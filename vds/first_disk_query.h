// How the operations on the partitions of the first internal disk begin: a service that is ready, then the
// list of the disk's partitions.
#pragma once

#include "vds/service_array.h"
#include "vds/service_check.h"
#include "vds/vds_partition.h"

// What an operation writes when it cannot begin.
struct FirstDiskTexts {
    ServiceTexts service;
    FailureText noPartitions;  // at the level of the service's texts; its result code is FALSE
};

// TRUE with the partitions of the first internal disk, or FALSE after the record.
BOOL QueryFirstDisk(CVDSPartition& partition, const FirstDiskTexts& texts, PartitionList& partitions);
