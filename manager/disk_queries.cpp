// Queries of the internal disk, and the active flag: thin wrappers of the volume layer.

#include "diag/log_record.h"
#include "diag/module.h"
#include "manager/factory_layout.h"
#include "manager/guard.h"
#include "manager/kestova.h"
#include "vds/vds_partition.h"

int Kestova::GetFirstInternalDriveNumber() {
    return Guarded(ending::GetFirstInternalDriveNumber, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetFirstInternalDriveNumber\tStart"));
        int number = noDisk;
        if (m_pVDSPartition == nullptr || !m_pVDSPartition->GetFirstInternalDriveNumber(number))
            number = noDisk;
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova::GetFirstInternalDriveNumber\tEnd. DriveNumber = "))
            .Int(number);
        return number;
    });
}

int Kestova::GetActivePartitionNumber() {
    return Guarded(ending::GetActivePartitionNumber, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetActivePartitionNumber\tStart"));
        int number = noPartition;
        if (m_pVDSPartition == nullptr || !m_pVDSPartition->GetActivePartitionNumber(number))
            number = noPartition;
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova::GetActivePartitionNumber\tEnd. PartitionNumber = "))
            .Int(number);
        return number;
    });
}

int Kestova::SetActive(int partition) {
    return Guarded(ending::SetActive, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::SetActive\tStart"));
        const int iRet = m_pVDSPartition != nullptr && !m_pVDSPartition->SetActive(partition);
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::SetActive\tEnd. iRet = ")).Int(iRet);
        return iRet;
    });
}

int Kestova::ClearActive() {
    return Guarded(ending::ClearActive, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::ClearActive\t\tStart"));
        const int iRet = m_pVDSPartition != nullptr && !m_pVDSPartition->ClearActive();
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::ClearActive\t\tEnd. iRet = ")).Int(iRet);
        return iRet;
    });
}

int Kestova::IsDynamic() {
    return Guarded(ending::IsDynamic, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsDynamic\tStart"));
        const int bReturn = m_pVDSPartition != nullptr && m_pVDSPartition->IsDynamic();
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsDynamic\tEnd. bReturn = ")).Int(bReturn);
        return bReturn;
    });
}
