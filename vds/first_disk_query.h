// The first steps of every operation on the partitions of the first internal disk: check that the service is
// ready, then list the partitions.
#pragma once

#include "vds/service_array.h"
#include "vds/service_check.h"
#include "vds/vds_partition.h"

// What an operation writes if one of these steps fails.
struct FirstDiskTexts {
    ServiceTexts service;
    FailureText noPartitions;  // at the level of the service's texts, with the result FALSE
};

// The partitions of the first internal disk. FALSE after the record of the step that failed.
BOOL QueryFirstDisk(CVDSPartition& partition, const FirstDiskTexts& texts, PartitionList& partitions);
