// Construction and destruction of the manager object, and Initialize.

#include "manager/kestova.h"
#include "manager/guard.h"

#include <cstdarg>
#include <new>
#include <vector>

#include "base/drive_letter.h"
#include "base/format.h"
#include "device/encrypt_volume.h"
#include "diag/log_record.h"
#include "diag/module.h"
#include "vds/vds_partition.h"

// Part of the object's layout; no operation uses it.
class CReservedObject {};

namespace {

template <typename Owned>
void Destroy(Owned*& owned) {
    delete owned;
    owned = nullptr;
}

}  // namespace

Kestova::Kestova() : m_cWinREDriveLetter(noLetter), m_cRcvDriveLetter(noLetter) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::Kestova\tStart"));
    m_pEncryptVolume = new (std::nothrow) CEncryptVolume;
    m_pVDSPartition = new (std::nothrow) CVDSPartition;
    m_pReserved1 = new (std::nothrow) CReservedObject;
    m_pReserved2 = new (std::nothrow) CReservedObject;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::Kestova\tEnd"));
}

Kestova::Kestova(const Kestova& other) {
    *this = other;
}

Kestova& Kestova::operator=(const Kestova& other) {
    if (this == &other) return *this;
    m_HardDiskType = other.m_HardDiskType;
    m_wReserved = other.m_wReserved;
    m_pEncryptVolume = other.m_pEncryptVolume;
    m_pVDSPartition = other.m_pVDSPartition;
    m_pReserved1 = other.m_pReserved1;
    m_pReserved2 = other.m_pReserved2;
    m_cWinREDriveLetter = other.m_cWinREDriveLetter;
    m_cRcvDriveLetter = other.m_cRcvDriveLetter;
    m_iWinREPartNumber = other.m_iWinREPartNumber;
    m_iRcvPartNumber = other.m_iRcvPartNumber;
    const bool copied = Guarded(false, [&] {
        m_mapWinDrive = other.m_mapWinDrive;
        m_mapPEDrive = other.m_mapPEDrive;
        return true;
    });
    if (!copied) {
        // A part of the maps would answer questions about letters wrongly.
        m_mapWinDrive.clear();
        m_mapPEDrive.clear();
    }
    return *this;
}

Kestova::~Kestova() {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::~Kestova\tStart"));
    Destroy(m_pEncryptVolume);
    Destroy(m_pVDSPartition);
    Destroy(m_pReserved1);
    Destroy(m_pReserved2);
    CleanMap();
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::~Kestova\tEnd"));
}

int Kestova::Initialize(bool) {
    return Guarded(ending::Initialize, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::Initialize\tStart"));
        const int bRet = m_pVDSPartition != nullptr ? m_pVDSPartition->Initialize() : 0;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::Initialize\tEnd. bRet = ")).Int(bRet);
        return bRet;
    });
}

WideString Kestova::StringFormat(const WCHAR* format, ...) {
    if (format == nullptr) return {};
    va_list arguments;
    va_start(arguments, format);
    va_list counted;
    va_copy(counted, arguments);
    std::vector<WCHAR> buffer(FormatBounded(nullptr, 0, format, counted) + 1);
    va_end(counted);
    FormatBounded(buffer.data(), buffer.size(), format, arguments);
    va_end(arguments);
    return buffer.data();
}
