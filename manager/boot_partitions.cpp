// Letters on demand for the two boot partitions of a GPT disk: the maker's and the EFI system partition.

#include "diag/failure_record.h"
#include "diag/module.h"
#include "manager/factory_layout.h"
#include "manager/guard.h"
#include "manager/kestova.h"
#include "vds/vds_partition.h"

namespace {

// A partition to letter, its required type, and the texts of the records.
struct Activation {
    int partition;
    GUID type;
    const WCHAR* start;
    const WCHAR* style;
    const WCHAR* typeUnreadable;
    const WCHAR* otherType;
    const WCHAR* notLettered;
    const WCHAR* noLetter;
    const WCHAR* end;
    bool endHasLetter;
};

constexpr Activation activeOrvoBootPartition = {
    .partition = gpt_layout::makersBoot,
    .type = ORVOBOOT_GUID,
    .start = TEXT("Kestova::ActiveOrvoBootPartition\t\tStart"),
    .style = TEXT("Kestova::ActiveOrvoBootPartition\t\tGetDiskStyle  is GPT disk."),
    .typeUnreadable = TEXT("Kestova::ActiveOrvoBootPartition\t\tGetPartitionType ERROR_GET_PARTITION_TYPE."),
    .otherType = TEXT("Kestova::ActiveOrvoBootPartition\t\tGetPartitionType is not ORVOBOOT_GUID."),
    .notLettered = TEXT("Kestova::ActiveOrvoBootPartition\tSetDriveLetter\tERROR_SET_DRIVE_LETTER."),
    .noLetter = TEXT("Kestova::ActiveOrvoBootPartition\tGetDriveLetter\tERROR_GET_DRIVE_LETTER."),
    .end = TEXT("Kestova::ActiveOrvoBootPartition\t\tEnd  wcOrvoBootPartitionDriver = "),
    .endHasLetter = true,
};

constexpr Activation activeGptSystemPartition = {
    .partition = gpt_layout::efiSystem,
    .type = PARTITION_SYSTEM_GUID,
    .start = TEXT("Kestova::ActiveGPTSystemPartition\t\tStart"),
    .style = TEXT("Kestova::ActiveGPTSystemPartition\t\tGetDiskStyle  is GPT disk."),
    .typeUnreadable = TEXT("Kestova::ActiveGPTSystemPartition\t\tGetPartitionType ERROR_GET_PARTITION_TYPE."),
    .otherType = TEXT("Kestova::ActiveGPTSystemPartition\t\tGetPartitionType is not ORVOBOOT_GUID."),
    .notLettered = TEXT("Kestova::ActiveGPTSystemPartition\tSetDriveLetter\tERROR_SET_DRIVE_LETTER."),
    .noLetter = TEXT("Kestova::ActiveGPTSystemPartition\tGetDriveLetter\tERROR_GET_DRIVE_LETTER."),
    .end = TEXT("Kestova::ActiveGPTSystemPartition\t\tEnd"),
    .endHasLetter = false,
};

// A partition whose letter is deleted, and the texts of the records.
struct Disabling {
    int partition;
    const WCHAR* start;
    const WCHAR* style;
    const WCHAR* notTaken;
    const WCHAR* end;
};

constexpr Disabling disableOrvoBootPartition = {
    .partition = gpt_layout::makersBoot,
    .start = TEXT("Kestova::DisableOrvoBootPartition\tStart"),
    .style = TEXT("Kestova::DisableOrvoBootPartition\t\tGetDiskStyle is GPT disk."),
    .notTaken = TEXT("Kestova::DisableOrvoBootPartition\t SetDriveLetter  ERROR_SET_DRIVE_LETTER"),
    .end = TEXT("Kestova::DisableOrvoBootPartition\tEnd"),
};

constexpr Disabling disableGptSystemPartition = {
    .partition = gpt_layout::efiSystem,
    .start = TEXT("Kestova::DisableGPTSystemPartition\tStart"),
    .style = TEXT("Kestova::DisableGPTSystemPartition\t\tGetDiskStyle is GPT disk."),
    .notTaken = TEXT("Kestova::DisableGPTSystemPartition\t SetDriveLetter  ERROR_SET_DRIVE_LETTER"),
    .end = TEXT("Kestova::DisableGPTSystemPartition\tEnd"),
};

int GiveLetter(CVDSPartition* partitions, const Activation& row, WCHAR& letter, int& step) {
    GUID type = {};
    if (partitions == nullptr || !partitions->GetPartitionType(row.partition, type))
        return LogFailure(LOG_LEVEL_ERROR, row.typeUnreadable, step);
    if (type != row.type)
        return LogFailure(LOG_LEVEL_TRACE, row.otherType, static_cast<int>(ERROR_NOT_ORVOBOOT_GUID));
    step = ERROR_SET_DRIVE_LETTER;
    if (!partitions->SetDriveLetter(row.partition, FLAG_ASSIGN))
        return LogFailure(LOG_LEVEL_ERROR, row.notLettered, step);
    if (partitions->GetDriveLetter() == noLetter)
        return LogFailure(LOG_LEVEL_ERROR, row.noLetter, ERROR_GET_DRIVE_LETTER);
    letter = partitions->GetDriveLetter();
    return 0;
}

int Activate(CVDSPartition* partitions, const Activation& row, WCHAR& letter) {
    int step = ending::ActivePartition;
    return Guarded(step, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(row.start);
        LogRecord(LOG_LEVEL_TRACE)
            .Text(row.style);  // for every disk: only the type of the partition is tested
        const int code = GiveLetter(partitions, row, letter, step);
        if (row.endHasLetter) {
            LogRecord(LOG_LEVEL_TRACE).Text(row.end).Char(letter);
        } else {
            LogRecord(LOG_LEVEL_TRACE).Text(row.end);
        }
        return code;
    });
}

int Disable(CVDSPartition* partitions, const Disabling& row) {
    return Guarded(ending::DisablePartition, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(row.start);
        LogRecord(LOG_LEVEL_TRACE).Text(row.style);
        const bool taken = partitions != nullptr && partitions->SetDriveLetter(row.partition, FLAG_DELETE);
        const int code = taken ? 0 : LogFailure(LOG_LEVEL_ERROR, row.notTaken, ending::DisablePartition);
        LogRecord(LOG_LEVEL_TRACE).Text(row.end);
        return code;
    });
}

}  // namespace

int Kestova::ActiveOrvoBootPartition(WCHAR& letter) {
    return Activate(m_pVDSPartition, activeOrvoBootPartition, letter);
}

int Kestova::DisableOrvoBootPartition() {
    return Disable(m_pVDSPartition, disableOrvoBootPartition);
}

int Kestova::ActiveGPTSystemPartition(WCHAR& letter) {
    return Activate(m_pVDSPartition, activeGptSystemPartition, letter);
}

int Kestova::DisableGPTSystemPartition() {
    return Disable(m_pVDSPartition, disableGptSystemPartition);
}
