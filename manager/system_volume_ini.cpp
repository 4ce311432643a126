#include "manager/system_volume_ini.h"

#include "base/format.h"
#include "diag/failure_record.h"
#include "manager/factory_layout.h"
#include "manager/kestova.h"
#include "manager/recovery_media.h"
#include "platform/windows_api.h"
#include "vds/vds_partition.h"

bool RecordActivePartition(const WCHAR* file, int partition) {
    WCHAR number[16];
    FormatInto(number, std::size(number), TEXT("%d"), partition);
    return WritePrivateProfileStringW(system_record::section, system_record::key, number, file);
}

int Kestova::GetSystemVolumeIni(WCHAR* pszFile, DWORD dwFileNumberOfElements) {
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova::GetSystemVolumeIni\t\tStart. pszFile = "))
        .Text(pszFile)
        .Text(TEXT(" dwFileNumberOfElements"))
        .ULong(dwFileNumberOfElements);

    const auto locate = [&]() -> int {
        THardDiskType style = HARD_DISK_UNKNOWN;
        if (!GetDiskStyle(style)) {
            LogRecord(LOG_LEVEL_TRACE)
                .Text(
                    TEXT("Kestova::GetSystemVolumeIni\tGetDiskStyle\tERROR_GET_DISK_STYLE. enumDiskStyle = "))
                .Int(style);
            return FALSE;
        }
        if (style == HARD_DISK_GPT) {
            return LogFailure(LOG_LEVEL_ERROR, TEXT("Kestova::GetSystemVolumeIni does support GPT."), FALSE);
        }
        if (style != HARD_DISK_MBR) {
            return LogFailure(LOG_LEVEL_ERROR,
                              TEXT("Kestova::GetSystemVolumeIni\tGetDiskStyle\tPARTITION_TYPE_NONE"), FALSE);
        }
        if (const int nReturn = CheckMBRRcvprtStatus(mbr_layout::recovery); nReturn != 0) {
            LogRecord(LOG_LEVEL_TRACE)
                .Text(TEXT("Kestova::GetSystemVolumeIni\tCheckRcvprtStatus\tError. nReturn = "))
                .Int(nReturn);
            return FALSE;
        }
        if (!m_pVDSPartition->SetDriveLetter(mbr_layout::recovery, FLAG_ASSIGN)) {
            return LogFailure(LOG_LEVEL_TRACE,
                              TEXT("Kestova::GetSystemVolumeIni\tSetDriveLetter\tFLAG_ASSIGN\tError"), FALSE);
        }
        const WCHAR letter = m_pVDSPartition->GetDriveLetter();
        if (letter == noLetter) {
            // Returns TRUE nevertheless; the caller's buffer is unchanged.
            LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetSystemVolumeIni\tGetDriveLetter\tError"));
            return TRUE;
        }
        if (!IsRCVVolume(letter, TYPE_HDD)) {
            return LogFailure(LOG_LEVEL_TRACE, TEXT("Kestova::GetSystemVolumeIni\tIsRCVVolume\tError"),
                              FALSE);
        }
        FormatInto(pszFile, dwFileNumberOfElements, TEXT("%c:\\"), letter);
        PathAppendW(pszFile, systemVolumeIni);
        return TRUE;
    };

    const int bReturn = locate();
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetSystemVolumeIni\t\tEnd. bReturn = ")).Int(bReturn);
    return bReturn;
}
