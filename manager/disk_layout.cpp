// The partition style of the first internal disk, and which of the known layouts it has.

#include "base/wide_string.h"
#include "diag/log_record.h"
#include "diag/module.h"
#include "manager/factory_layout.h"
#include "manager/formatted_record.h"
#include "manager/guard.h"
#include "manager/kestova.h"
#include "vds/service_array.h"
#include "vds/vds_partition.h"

namespace {

tagDiskTypeEnum GptLayout(CVDSPartition& partitions) {
    GUID type = {};
    if (!partitions.GetPartitionType(gpt_layout::efiSystem, type)) {
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova::GetCurrentDiskType\tGetPartitionType\tERROR_GET_PARTITION_TYPE"));
        return DISK_TYPE_UNKNOWN;
    }
    return type == PARTITION_SYSTEM_GUID ? DISK_TYPE_GPT_ESP : DISK_TYPE_GPT_OTHER;
}

}  // namespace

int Kestova::GetDiskStyle(THardDiskType& style) {
    return Guarded(ending::GetDiskStyle, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetDiskStyle\t\tStart"));
        style = HARD_DISK_UNKNOWN;
        if (m_pVDSPartition != nullptr) {
            int disk = noDisk;
            PartitionList partitions;  // a query that fails may return an array, too
            if (m_pVDSPartition->GetFirstInternalDriveNumber(disk) && m_pVDSPartition->SelectDisk(disk) &&
                m_pVDSPartition->QueryPartitions(partitions.PutRecords(), partitions.PutCount())) {
                style = static_cast<THardDiskType>(m_pVDSPartition->DiskProperties().PartitionStyle);
            }
            m_HardDiskType = style;
        }
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetDiskStyle\t\tEnd. enumDiskStyle = ")).Int(style);
        return m_pVDSPartition != nullptr;
    });
}

int Kestova::GetCurrentDiskType(tagDiskTypeEnum& type) {
    return Guarded(ending::GetCurrentDiskType, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetCurrentDiskType\t\tStart"));

        const auto mbrLayout = [&] {
            BYTE id = MBR_ID_NONE;
            if (!m_pVDSPartition->GetPartitionType(mbr_layout::system, id)) {
                LogRecord(LOG_LEVEL_TRACE)
                    .Text(TEXT("Kestova::GetCurrentDiskType\tGetPartitionType\tERROR_GET_PARTITION_TYPE"));
                return DISK_TYPE_UNKNOWN;
            }
            if (id != MBR_ID_NTFS) return DISK_TYPE_UNKNOWN;
            const WCHAR letter = GetDriveLetter(GetFirstInternalDriveNumber(), mbr_layout::system);
            if (letter == noLetter) {
                LogRecord(LOG_LEVEL_TRACE)
                    .Text(TEXT("Kestova::GetCurrentDiskType\tGetDriveLetter\tERROR_GET_DRIVE_LETTER"));
                return DISK_TYPE_UNKNOWN;
            }
            // A name that cannot be read counts as empty.
            WCHAR name[MAX_PATH] = {};
            GetVolumeName(letter, name);
            LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetCurrentDiskType\t")).Text(name);
            return EqualIgnoringCase(name, TEXT("System Reserved")) ? DISK_TYPE_MBR_SYSTEM_RESERVED
                                                                    : DISK_TYPE_MBR_OTHER;
        };

        type = DISK_TYPE_UNKNOWN;
        tagDiskTypeEnum found = DISK_TYPE_UNKNOWN;
        THardDiskType style = HARD_DISK_UNKNOWN;
        if (!GetDiskStyle(style)) {
            LogRecord(LOG_LEVEL_TRACE)
                .Text(TEXT("Kestova::GetCurrentDiskType\tGetDiskStyle\tERROR_GET_DISK_STYLE"));
        } else if (style == HARD_DISK_MBR) {
            LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetCurrentDiskType\tGetDiskStyle\tMBR"));
            found = mbrLayout();
        } else if (style == HARD_DISK_GPT) {
            LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetCurrentDiskType\tGetDiskStyle\tGPT"));
            found = GptLayout(*m_pVDSPartition);
        }
        TraceString(StringFormat(TEXT("Kestova::GetCurrentDiskType is %d"), found));
        type = found;
        return TRUE;
    });
}
