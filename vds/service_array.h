// An array allocated by the Virtual Disk Service, freed at the end of its scope.
#pragma once

#include <span>

#include "platform/vds.h"

template <typename Record>
class ServiceArray {
  public:
    ServiceArray() = default;
    ~ServiceArray() { CoTaskMemFree(records_); }
    ServiceArray(const ServiceArray&) = delete;
    ServiceArray& operator=(const ServiceArray&) = delete;

    // The addresses at which the service stores the array and its count; use them once.
    Record** PutRecords() { return &records_; }
    LONG* PutCount() { return &count_; }

    bool HasArray() const { return records_ != nullptr; }
    std::span<const Record> Records() const {
        return {records_, records_ != nullptr && count_ > 0 ? static_cast<size_t>(count_) : 0};
    }

  private:
    Record* records_ = nullptr;
    LONG count_ = 0;
};

using PartitionList = ServiceArray<VDS_PARTITION_PROP>;
using ExtentList = ServiceArray<VDS_DISK_EXTENT>;

// The partition of that number, or null.
inline const VDS_PARTITION_PROP* FindPartition(const PartitionList& partitions, int partitionNumber) {
    for (const VDS_PARTITION_PROP& partition : partitions.Records()) {
        if (partition.ulPartitionNumber == static_cast<ULONG>(partitionNumber)) return &partition;
    }
    return nullptr;
}
