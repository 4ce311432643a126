// Checks the MBR ID of the recovery partition, and hides a visible one.

#include "manager/recovery_status.h"

#include "base/drive_letter.h"
#include "diag/failure_record.h"
#include "manager/kestova.h"
#include "manager/recovery_media.h"
#include "vds/vds_partition.h"

int Kestova::CheckMBRRcvprtStatus(int partition) {
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova::CheckMBRRcvprtStatus\t\tStart. iPartitionNumber = "))
        .Int(partition);

    // Hides a visible recovery partition by its ID; files and letter stay.
    const auto hide = [&]() -> int {
        const WCHAR letter = GetDriveLetter(GetFirstInternalDriveNumber(), partition);
        if (letter == noLetter) {
            return LogFailure(
                LOG_LEVEL_ERROR,
                TEXT("Kestova::CheckMBRRcvprtStatus\tGETLETTER_FAILED. _T('0') == cDriveLetter"),
                GETLETTER_FAILED);
        }
        if (!IsRCVVolume(letter, TYPE_HDD)) {
            return LogFailure(LOG_LEVEL_ERROR, TEXT("Kestova::CheckMBRRcvprtStatus\tNO_RCVPRT"), NO_RCVPRT);
        }
        if (!m_pVDSPartition->ChangePartitionType(partition, MBR_ID_HIDDEN_RECOVERY)) {
            return LogFailure(LOG_LEVEL_ERROR, TEXT("Kestova::CheckMBRRcvprtStatus\tCHANGEID_FAILED"),
                              CHANGEID_FAILED);
        }
        return RCVPRT_READY;
    };

    const auto check = [&]() -> int {
        BYTE type = MBR_ID_NONE;
        if (m_pVDSPartition == nullptr || !m_pVDSPartition->GetPartitionType(partition, type)) {
            return LogFailure(LOG_LEVEL_ERROR,
                              TEXT("Kestova::CheckMBRRcvprtStatus\tGetPartitionType return FALSE"),
                              GETTYPE_FAILED);
        }
        switch (type) {
            case MBR_ID_NTFS:
                return hide();
            case MBR_ID_OEM_RECOVERY:
            case MBR_ID_HIDDEN_RECOVERY:
                return RCVPRT_READY;
        }
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT("Kestova::CheckMBRRcvprtStatus\tUNEXPECT_ID. PartitionType = "))
            .Int(type);
        return UNEXPECT_ID;
    };

    const int iRet = check();
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::CheckMBRRcvprtStatus\t\tEnd. iRet = ")).Int(iRet);
    return iRet;
}
