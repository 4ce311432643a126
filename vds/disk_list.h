// The list of all disks, freed at the end of its scope.
#pragma once

#include <cstdlib>
#include <span>

#include "vds/vds_ex.h"

class DiskList {
  public:
    DiskList() = default;
    ~DiskList() { std::free(disks_); }
    DiskList(const DiskList&) = delete;
    DiskList& operator=(const DiskList&) = delete;

    // Fills the list; call it once. The code of CVDSEx::QueryDisks; after a failure the list is empty, since
    // QueryDisks has freed the array already.
    HRESULT Query(IVdsService* service) {
        VDS_DISK_PROP* disks = nullptr;
        LONG count = 0;
        const HRESULT hResult = CVDSEx::QueryDisks(service, &disks, &count);
        if (hResult == S_OK) {
            disks_ = disks;
            count_ = count;
        }
        return hResult;
    }
    std::span<const VDS_DISK_PROP> Disks() const { return {disks_, static_cast<size_t>(count_)}; }

  private:
    VDS_DISK_PROP* disks_ = nullptr;
    LONG count_ = 0;
};
