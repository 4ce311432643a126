// Assigning letters to the recovery and Windows RE partitions, and deleting them.

#include "diag/log_record.h"
#include "diag/module.h"
#include "manager/factory_layout.h"
#include "manager/guard.h"
#include "manager/kestova.h"
#include "vds/vds_partition.h"

namespace {

// The records about one of the two partitions. Some texts name the other one.
struct Lettering {
    const WCHAR* assign;
    const WCHAR* searchFailed;
    const WCHAR* notFound;
    int notLetteredLevel;
    const WCHAR* notLettered;
    const WCHAR* assigned;
    const WCHAR* remove;
    const WCHAR* removed;
};

constexpr Lettering recoveryLettering = {
    .assign = TEXT("Kestova::AssignRecoveryPartition\tEnter.  "),
    .searchFailed = TEXT("Kestova::AssignRecoveryPartition\tIsExistRecoveryPartition return FALSE"),
    .notFound = TEXT("Kestova::AssignRecoveryPartition\tEnd. Not have recovery partition "),
    .notLetteredLevel = LOG_LEVEL_ERROR,
    .notLettered = TEXT("Kestova::AssignRecoveryPartition\tSetDriveLetter\tFLAG_QUERY"),
    .assigned = TEXT("Kestova::AssignRecoveryPartition\tEnd. cDriveLetter = "),
    .remove = TEXT("Kestova::RemoveRecoveryPartition\tEnter.  "),
    .removed = TEXT("Kestova::RemoveRecoveryPartition\tEnd."),
};

constexpr Lettering winReLettering = {
    .assign = TEXT("Kestova::AssignWinREPartition\tEnter.  "),
    .searchFailed = TEXT("Kestova::AssignRecoveryPartition\tIsExistRecoveryPartition return FALSE"),
    .notFound = TEXT("Kestova::AssignRecoveryPartition\tNot have WinRE partition"),
    .notLetteredLevel = LOG_LEVEL_TRACE,
    .notLettered = TEXT("Kestova::AssignWinREPartition\tSetDriveLetter\tFLAG_QUERY"),
    .assigned = TEXT("Kestova::AssignWinREPartition\tEnd. cDriveLetter = "),
    .remove = TEXT("Kestova::RemoveWinREPartition\tEnter.  "),
    .removed = TEXT("Kestova::RemoveWinREPartition\tEnter.  "),
};

// The partition that an assignment found last, which the matching removal uses.
struct Remembered {
    int& partition;
    WCHAR& letter;
};

// Stores the partition before lettering it, and the letter only once it is assigned.
void AssignFound(CVDSPartition& partitions, const Lettering& row, int partition, Remembered remembered,
                 WCHAR& letter) {
    remembered.partition = partition;
    if (!partitions.SetDriveLetter(partition, FLAG_ASSIGN)) {
        LogRecord(row.notLetteredLevel).Text(row.notLettered);
        return;
    }
    letter = remembered.letter = partitions.GetDriveLetter();
}

template <typename Search>
int Assign(CVDSPartition* partitions, const Lettering& row, const Search& search, Remembered remembered,
           WCHAR& letter) {
    return Guarded(ending::AssignPartition, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(row.assign);
        letter = noLetter;
        int disk = noDisk;
        int partition = noPartition;
        int exists = 0;
        if (!search(disk, partition, exists)) {
            LogRecord(LOG_LEVEL_ERROR).Text(row.searchFailed);
        } else if (partition == noPartition) {
            LogRecord(LOG_LEVEL_ERROR).Text(row.notFound);
        } else {
            AssignFound(*partitions, row, partition, remembered, letter);
        }
        LogRecord(LOG_LEVEL_TRACE).Text(row.assigned).Char(letter);
        return TRUE;
    });
}

// Clears nothing: a second removal deletes the letter of the same partition again.
void Remove(CVDSPartition* partitions, const Lettering& row, int partition, WCHAR letter) {
    Guarded(FALSE, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(row.remove);
        if (letter == noLetter || partition == noPartition) return FALSE;
        const BOOL removed = partitions != nullptr && partitions->SetDriveLetter(partition, FLAG_DELETE);
        LogRecord(LOG_LEVEL_TRACE).Text(row.removed);
        return removed;
    });
}

}  // namespace

int Kestova::AssignRecoveryPartition(WCHAR& letter) {
    const auto search = [this](int& disk, int& partition, int& exists) {
        return IsExistRecoveryPartition(disk, partition, exists);
    };
    return Assign(m_pVDSPartition, recoveryLettering, search, {m_iRcvPartNumber, m_cRcvDriveLetter}, letter);
}

int Kestova::AssignWinREPartition(WCHAR& letter) {
    const auto search = [this](int& disk, int& partition, int& exists) {
        return IsExistWinREPartition(disk, partition, exists);
    };
    return Assign(m_pVDSPartition, winReLettering, search, {m_iWinREPartNumber, m_cWinREDriveLetter}, letter);
}

void Kestova::RemoveRecoveryPartition() {
    Remove(m_pVDSPartition, recoveryLettering, m_iRcvPartNumber, m_cRcvDriveLetter);
}

void Kestova::RemoveWinREPartition() {
    Remove(m_pVDSPartition, winReLettering, m_iWinREPartNumber, m_cWinREDriveLetter);
}

int Kestova::IsExistRcvprt() {
    return Guarded(ending::IsExistRcvprt, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsExistRcvprt\tStart"));
        WCHAR letter = noLetter;
        AssignRecoveryPartition(letter);
        const int bRet = letter != noLetter;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsExistRcvprt\tEnd. bRet = ")).Int(bRet);
        return bRet;
    });
}
