// The volumes that BitLocker encrypts.

#include "base/drive_letter.h"
#include "device/encrypt_volume.h"
#include "diag/log_record.h"
#include "diag/module.h"
#include "manager/guard.h"
#include "manager/kestova.h"

namespace {

// Whether BitLocker could be queried; the record is empty without an encryption layer.
BOOL Query(CEncryptVolume* encryption, tagEncryptVolume_t& record) {
    return encryption != nullptr && encryption->GetEncryptVolume(record);
}

}  // namespace

int Kestova::IsExistEncryptVolume() {
    return Guarded(ending::IsExistEncryptVolume, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsExistEncryptVolume\tStart"));
        tagEncryptVolume_t record;
        const BOOL bReturn = Query(m_pEncryptVolume, record);
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsExistEncryptVolume\tEnd. bReturn = ")).Int(bReturn);
        return bReturn;
    });
}

WCHAR Kestova::GetEncryptVolume() {
    return Guarded(ending::GetEncryptVolume, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetEncryptVolume\tStart"));
        WCHAR letter = noLetter;
        tagEncryptVolume_t record;
        if (Query(m_pEncryptVolume, record) && record.VolumeCount == 1)
            letter = *record.strDriveLetter[0].c_str();
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetEncryptVolume\tEnd. cDriveLetter = ")).Char(letter);
        return letter;
    });
}

int Kestova::GetAllEncryptVolume(WCHAR* buffer, DWORD size) {
    return Guarded(ending::GetAllEncryptVolume, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetAllEncryptVolume\tStart"));
        const DWORD capacity = buffer != nullptr ? size : 0;
        CopyBounded(buffer, capacity, TEXT(""));
        tagEncryptVolume_t record;
        const BOOL bReturn = Query(m_pEncryptVolume, record);
        if (bReturn) {
            WideString letters;
            for (int index = 0; index < record.VolumeCount; ++index)
                letters += UpperCase(record.strDriveLetter[index]).substr(0, 1);
            CopyBounded(buffer, capacity, letters.c_str());
        }
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetAllEncryptVolume\tEnd. bReturn = ")).Int(bReturn);
        return bReturn;
    });
}
