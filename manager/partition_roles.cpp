// The purpose of a partition.

#include "diag/log_record.h"
#include "diag/module.h"
#include "manager/guard.h"
#include "manager/kestova.h"
#include "vds/vds_partition.h"

int Kestova::IsNeedHidePartition(int disk, int partition) {
    return Guarded(ending::IsNeedHidePartition, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsNeedHidePartition\t\tStart"));
        const int bRet = m_pVDSPartition != nullptr && m_pVDSPartition->IsNeedHidePartition(disk, partition);
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsNeedHidePartition\t\tEnd"));
        return bRet;
    });
}

int Kestova::IsBIOSHibernationPartition(int disk, int partition) {
    return Guarded(ending::IsBIOSHibernationPartition, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsBIOSHibernationPartition\t\tStart"));
        const int bRet =
            m_pVDSPartition != nullptr && m_pVDSPartition->IsBIOSHibernationPartition(disk, partition);
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova::IsBIOSHibernationPartition\t\tEnd  bRet = "))
            .Int(bRet);
        return bRet;
    });
}

int Kestova::SetBIOSHibernationPartitionID(int partition) {
    return Guarded(ending::SetBIOSHibernationPartitionID, [&] {
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::SetBIOSHibernationPartitionID\t\tStart"));
        ModuleContext context;
        const int bReturn = m_pVDSPartition != nullptr &&
                            m_pVDSPartition->ChangePartitionType(partition, MBR_ID_BIOS_HIBERNATION);
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova::SetBIOSHibernationPartitionID\t\tEnd. bReturn"))
            .Int(bReturn);
        return !bReturn;
    });
}

int Kestova::IsCachePartitionForExpCacheExist() {
    return Guarded(ending::IsCachePartitionForExpCacheExist, [&] {
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsCachePartitionForExpCacheExist\t\tStart"));
        int bRet = 0;
        if (m_pVDSPartition == nullptr) {
            LogRecord(LOG_LEVEL_ERROR)
                .Text(TEXT("Kestova::IsCachePartitionForExpCacheExist failed for m_pVDSPartition == NULL"));
        } else {
            bRet = m_pVDSPartition->IsCachePartitionForExpCacheExist();
            if (bRet) {
                LogRecord(LOG_LEVEL_TRACE)
                    .Text(TEXT("Kestova::IsCachePartitionForExpCacheExist      return true"));
            }
        }
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsCachePartitionForExpCacheExist\t\t End"));
        return bRet;
    });
}
