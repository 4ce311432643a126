// The label of the volume on the selected partition.
#include "base/wide_string.h"
#include "vds/service_check.h"
#include "vds/vds_ex.h"
#include "vds/vds_partition.h"

namespace {

constexpr ServiceTexts serviceTexts = {
    .level = LOG_LEVEL_ERROR,
    .missing = {TEXT("Kestova CVDSPartition::GetVolumeLabel\tNULL == m_pVdsService")},
    .notReady = {},
};

bool CanHaveVolume(VDS_DISK_EXTENT_TYPE type) {
    return type != VDS_DET_UNKNOWN && type != VDS_DET_FREE && type != VDS_DET_OEM && type != VDS_DET_UNUSABLE;
}

}  // namespace

BOOL CVDSPartition::GetVolumeLabel(WCHAR* label, int capacity) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::GetVolumeLabel\tStart"));
    m_pVdsVolumeMF = nullptr;
    const BOOL bRet = ReadLabel(label, capacity);
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::GetVolumeLabel\tEnd bRet = ")).Int(bRet);
    return bRet;
}

BOOL CVDSPartition::ReadLabel(WCHAR* label, int capacity) {
    if (CheckService(m_pVdsService, serviceTexts) != S_OK || !CanHaveVolume(m_DiskExtent.type)) return FALSE;
    HRESULT hResult = CVDSEx::GetVdsVolumeMF(m_pVdsService, m_DiskExtent.volumeId, &m_pVdsVolumeMF);
    if (hResult != S_OK || m_pVdsVolumeMF == nullptr) return FALSE;
    VDS_FILE_SYSTEM_PROP properties = {};
    hResult = m_pVdsVolumeMF->GetFileSystemProperties(&properties);
    if (hResult == S_OK && capacity > 0) {
        const WCHAR* const text = properties.pwszLabel != nullptr ? properties.pwszLabel : TEXT("");
        CopyBounded(label, static_cast<size_t>(capacity), text);
    }
    CoTaskMemFree(properties.pwszLabel);
    return hResult == S_OK;
}
