// Construction and destruction of the partition object, and the connection to the service.
#include "vds/vds_partition.h"

#include "vds/vds_ex.h"

namespace {

constexpr int connectAttempts = 20;
constexpr DWORD pauseMilliseconds = 1000;

template <typename Interface>
void Release(Interface*& held) {
    if (held != nullptr) held->Release();
    held = nullptr;
}

}  // namespace

CVDSPartition::CVDSPartition() = default;

CVDSPartition::~CVDSPartition() {
    Release(m_pVdsAdvancedDisk);
    Release(m_pVdsService);
    Release(m_pVdsDisk);
    Release(m_pVdsVolumeMF);
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
