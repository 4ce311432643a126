// Construction and destruction of the partition object, and the connection to the service.
#include "vds/vds_partition.h"

#include "base/owners.h"
#include "vds/vds_ex.h"

namespace {

constexpr int connectAttempts = 20;
constexpr DWORD pauseMilliseconds = 1000;

}  // namespace

CVDSPartition::CVDSPartition() = default;

CVDSPartition::~CVDSPartition() {
    ComPtr<IVdsAdvancedDisk>(m_pVdsAdvancedDisk).Reset();
    ComPtr<IVdsService>(m_pVdsService).Reset();
    ComPtr<IVdsDisk>(m_pVdsDisk).Reset();
    ComPtr<IVdsVolumeMF>(m_pVdsVolumeMF).Reset();
}

BOOL CVDSPartition::Initialize() {
    for (int attempt = 0; attempt < connectAttempts; ++attempt) {
        if (attempt > 0) Sleep(pauseMilliseconds);
        if (CVDSEx::InitializeSecurity() != S_OK) continue;
        m_bServiceLoaded = TRUE;
        m_pVdsService = nullptr;
        if (CVDSEx::GetVdsService(&m_pVdsService) == S_OK) return TRUE;
    }
    return FALSE;
}
