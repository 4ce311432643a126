// Switches between booting the recovery partition and the system that was active before it. The record of the
// latter is written before the active flag changes, and deleted after a switch back.

#include "diag/log_record.h"
#include "diag/module.h"
#include "manager/factory_layout.h"
#include "manager/guard.h"
#include "manager/kestova.h"
#include "manager/result_codes.h"
#include "manager/system_volume_ini.h"
#include "platform/windows_api.h"
#include "vds/vds_partition.h"

namespace {

constexpr size_t iniPathCapacity = MAX_PATH + 1;

// The record that an operation ends with, indexed by its result code; without a text no record is written.
struct Outcome {
    int level;
    const WCHAR* text;
};

constexpr Outcome setRcvprtActive[] = {
    {LOG_LEVEL_TRACE, TEXT("Kestova::SetRcvprtActive\t\tEnd. Return 0")},
    {LOG_LEVEL_ERROR, TEXT("Kestova::SetRcvprtActive\tGetActivePartitionNumber return False. 1")},
    {LOG_LEVEL_ERROR, TEXT("Kestova::SetRcvprtActive\tGetActivePartitionNumber PartitionNumber is -1. 2")},
    {LOG_LEVEL_ERROR, TEXT("Kestova::SetRcvprtActive\tGetSystemVolumeIni return False. 3")},
    {LOG_LEVEL_ERROR, TEXT("Kestova::SetRcvprtActive\tWritePrivateProfileString return False. 4")},
    {LOG_LEVEL_ERROR, TEXT("Kestova::SetRcvprtActive\tSetActive return False. 5")},
};

constexpr Outcome setSystemActive[] = {
    {LOG_LEVEL_TRACE, TEXT("Kestova::SetSystemActive\t\tEnd")},
    {LOG_LEVEL_TRACE, TEXT("Kestova::SetSystemActive\t\tGetActivePartitionNumber return false. 1")},
    {LOG_LEVEL_TRACE, TEXT("Kestova::SetSystemActive\t\tGetActivePartitionNumber PartitionNumber is -1. 2")},
    {LOG_LEVEL_TRACE, TEXT("Kestova::SetSystemActive\t\tGetSystemVolumeIni return FALSE. 3")},
    {LOG_LEVEL_ERROR, TEXT("Kestova::SetSystemActive  SetActive return FALSE. 4")},
    {LOG_LEVEL_ERROR, TEXT("Kestova::SetSystemActive  DeleteFile return FALSE. 4")},
};

constexpr Outcome setPOneActive[] = {
    {LOG_LEVEL_TRACE, TEXT("Kestova::SetPOneActive\t\tEnd")},
    {LOG_LEVEL_ERROR, TEXT("Kestova::SetPOneActive\tGetActivePartitionNumber bReturn is FALSE. (1)")},
    {LOG_LEVEL_ERROR, TEXT("Kestova::SetPOneActive\tGetActivePartitionNumber PartitionNumber is -1.(2)")},
    {LOG_LEVEL_ERROR, TEXT("Kestova::SetPOneActive\tGetSystemVolumeIni bReturn is FALSE. (3)")},
    {LOG_LEVEL_ERROR, TEXT("Kestova::SetPOneActive\tWritePrivateProfileString bReturn is FALSE.(4)")},
    {LOG_LEVEL_ERROR, TEXT("Kestova::SetPOneActive\tSetActive bReturn is FALSE.(5)")},
    {LOG_LEVEL_ERROR, TEXT("Kestova::SetPOneActive\tDeleteFile bReturn is FALSE.(6)")},
};

constexpr Outcome setPTwoActive[] = {
    {LOG_LEVEL_TRACE, TEXT("Kestova::SetPTwoActive\t\tEnd")},
    {LOG_LEVEL_TRACE, nullptr},
    {LOG_LEVEL_TRACE, TEXT("Kestova::SetPTwoActive\tGetSystemVolumeIni return FALSE.(2)")},
    {LOG_LEVEL_TRACE, TEXT("Kestova::SetPTwoActive\tDeleteFile return FALSE.(3)")},
};

int Finish(const Outcome* outcomes, int code) {
    const Outcome& outcome = outcomes[code];
    if (outcome.text != nullptr) LogRecord(outcome.level).Text(outcome.text);
    return code;
}

// Memory that runs out is a failure like any other, so that the caller undoes what it did before.
BOOL SetFlag(CVDSPartition& partitions, int partition) {
    return Guarded(FALSE, [&] { return partitions.SetActive(partition); });
}

// Records the previous partition and makes the recovery partition active, or tries to undo both. 0, 4 or 5.
int SwitchToRecovery(CVDSPartition& partitions, const WCHAR* file, int previous) {
    if (!RecordActivePartition(file, previous)) return 4;
    if (SetFlag(partitions, mbr_layout::recovery)) return 0;
    DeleteFileW(file);
    SetFlag(partitions, previous);
    return 5;
}

}  // namespace

int Kestova::SetRcvprtActive() {
    int step = ending::SetRcvprtActive;
    return Guarded(step, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::SetRcvprtActive\t\tStart"));
        int previous = noPartition;
        if (m_pVDSPartition == nullptr || !m_pVDSPartition->GetActivePartitionNumber(previous)) {
            return Finish(setRcvprtActive, step);
        }
        if (previous == noPartition) return Finish(setRcvprtActive, 2);
        if (previous == mbr_layout::recovery) {
            LogRecord(LOG_LEVEL_TRACE).Text(recoveryWasActive);
            return 0;
        }
        WCHAR file[iniPathCapacity] = {};
        step = 3;
        if (!GetSystemVolumeIni(file, iniPathCapacity)) return Finish(setRcvprtActive, step);
        return Finish(setRcvprtActive, SwitchToRecovery(*m_pVDSPartition, file, previous));
    });
}

int Kestova::SetPOneActive() {
    int step = ending::SetPOneActive;
    return Guarded(step, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::SetPOneActive\t\tStart"));
        int previous = noPartition;
        if (m_pVDSPartition == nullptr || !m_pVDSPartition->GetActivePartitionNumber(previous)) {
            return Finish(setPOneActive, step);
        }
        if (previous == noPartition) return Finish(setPOneActive, 2);
        WCHAR file[iniPathCapacity] = {};
        step = 3;
        if (!GetSystemVolumeIni(file, iniPathCapacity)) return Finish(setPOneActive, step);
        if (previous != mbr_layout::recovery) {
            if (const int code = SwitchToRecovery(*m_pVDSPartition, file, previous); code != 0) {
                return Finish(setPOneActive, code);
            }
        }
        if (!PathFileExistsW(file)) {
            LogRecord(LOG_LEVEL_ERROR)
                .Text(TEXT("Kestova::SetPOneActive\tPathFileExists bReturn is FALSE.(5)"));
            LogRecord(LOG_LEVEL_ERROR).Text(file);
            return 0;
        }
        // Without a usable record a switch back selects the system partition, so a record of that number is
        // deleted too.
        int recorded = 0;
        const bool worthKeeping = ReadRecordedPartition(file, recorded) && recorded != mbr_layout::system;
        if (!worthKeeping && !DeleteFileW(file)) return Finish(setPOneActive, 6);
        return Finish(setPOneActive, 0);
    });
}

int Kestova::SetSystemActive() {
    int step = ending::SetSystemActive;
    return Guarded(step, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::SetSystemActive\t\tStart"));
        int current = noPartition;
        if (m_pVDSPartition == nullptr || !m_pVDSPartition->GetActivePartitionNumber(current)) {
            return Finish(setSystemActive, step);
        }
        if (current == noPartition) return Finish(setSystemActive, 2);
        WCHAR file[iniPathCapacity] = {};
        step = 3;
        if (!GetSystemVolumeIni(file, iniPathCapacity)) return Finish(setSystemActive, step);
        int target = mbr_layout::system;
        if (PathFileExistsW(file)) {
            if (!ReadRecordedPartition(file, target)) target = mbr_layout::system;
        } else if (current != mbr_layout::recovery) {
            LogRecord(LOG_LEVEL_TRACE).Text(systemWasActive);
            return 0;
        }
        step = 4;
        if (!m_pVDSPartition->SetActive(target)) return Finish(setSystemActive, step);
        if (PathFileExistsW(file) && !DeleteFileW(file)) return Finish(setSystemActive, 5);
        return Finish(setSystemActive, 0);
    });
}

int Kestova::SetPTwoActive() {
    int step = ending::SetPTwoActive;
    return Guarded(step, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::SetPTwoActive\t\tStart"));
        if (m_pVDSPartition == nullptr) return Finish(setPTwoActive, step);
        if (!SetFlag(*m_pVDSPartition, mbr_layout::system)) {
            SetFlag(*m_pVDSPartition, mbr_layout::recovery);
            return Finish(setPTwoActive, step);
        }
        WCHAR file[iniPathCapacity] = {};
        step = 2;
        if (!GetSystemVolumeIni(file, iniPathCapacity)) return Finish(setPTwoActive, step);
        if (PathFileExistsW(file) && !DeleteFileW(file)) return Finish(setPTwoActive, 3);
        return Finish(setPTwoActive, 0);
    });
}
