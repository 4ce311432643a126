// Whether a partition is the recovery or the Windows RE partition: both have the same GPT type and differ in
// their contents.

#include "base/drive_letter.h"
#include "diag/log_record.h"
#include "manager/guard.h"
#include "manager/kestova.h"
#include "manager/recovery_media.h"
#include "vds/vds_partition.h"

namespace {

struct Message {
    int level;
    const WCHAR* text;
};

// The records about a kind of partition.
struct Recognition {
    const WCHAR* start;
    Message typeUnreadable;
    Message otherType;
    Message contentsMatch;
    Message contentsDiffer;
    Message notLettered;
    const WCHAR* end;
    const WCHAR* answer;
};

constexpr Recognition recoveryPartition = {
    .start = TEXT("Kestova Kestova::IsRecoveryPartition\tStart."),
    .typeUnreadable = {LOG_LEVEL_ERROR,
                       TEXT("Kestova Kestova::IsRecoveryPartition get partition type error")},
    .otherType = {LOG_LEVEL_ERROR,
                  TEXT("Kestova Kestova::IsRecoveryPartition partition type is not recovery partition")},
    .contentsMatch = {LOG_LEVEL_TRACE,
                      TEXT("Kestova Kestova::IsRecoveryPartition partition contents is recovery partition")},
    .contentsDiffer =
        {LOG_LEVEL_ERROR,
         TEXT("Kestova Kestova::IsRecoveryPartition partition contents is not recovery partition")},
    .notLettered = {LOG_LEVEL_ERROR,
                    TEXT("Kestova Kestova::IsRecoveryPartition SetDriveLetter return false")},
    .end = TEXT("Kestova Kestova::IsRecoveryPartition\tEnd. bRet = "),
    .answer = TEXT(" bIsRecoveryPartition: "),
};

constexpr Recognition winRePartition = {
    .start = TEXT("Kestova Kestova::IsWinREPartition\tStart."),
    .typeUnreadable = {LOG_LEVEL_ERROR, TEXT("Kestova Kestova::IsWinREPartition get partition type error")},
    .otherType = {LOG_LEVEL_TRACE,
                  TEXT("Kestova Kestova::IsWinREPartition partition type is not recovery partition")},
    .contentsMatch = {LOG_LEVEL_TRACE,
                      TEXT("Kestova Kestova::IsWinREPartition partition contents is recovery partition")},
    .contentsDiffer = {LOG_LEVEL_TRACE,
                       TEXT(
                           "Kestova Kestova::IsWinREPartition partition contents is not recovery partition")},
    .notLettered = {LOG_LEVEL_TRACE, TEXT("Kestova Kestova::IsWinREPartition SetDriveLetter return false")},
    .end = TEXT("Kestova Kestova::IsWinREPartition\tEnd. bRet = "),
    .answer = TEXT(" bIsWinREPartition: "),
};

void Log(const Message& message) {
    LogRecord(message.level).Text(message.text);
}

bool IsOfRecoveryType(CVDSPartition* partitions, const Recognition& row) {
    GUID type = {};
    if (partitions == nullptr || !partitions->GetGPTPartitionType(type)) {
        Log(row.typeUnreadable);
        return false;
    }
    if (type != PARTITION_MSFT_RECOVERY_GUID) {
        Log(row.otherType);
        return false;
    }
    return true;
}

// Runs the contents test on the volume of a letter.
template <typename ContentsTest>
int TestContents(const Recognition& row, WCHAR letter, const ContentsTest& matches) {
    const int match = matches(letter) ? 1 : 0;
    Log(match ? row.contentsMatch : row.contentsDiffer);
    return match;
}

// Memory that runs out is a failure like any other, so that the letter is deleted whatever happens.
BOOL AssignLetter(CVDSPartition& partitions, int partition) {
    return Guarded(FALSE, [&] { return partitions.SetDriveLetter(partition, FLAG_ASSIGN); });
}

// A second time if memory runs out before the service is asked.
void DeleteLetter(CVDSPartition& partitions, int partition) {
    const auto ask = [&] {
        partitions.SetDriveLetter(partition, FLAG_DELETE);
        return true;
    };
    if (!Guarded(false, ask)) Guarded(false, ask);
}

// The same on a partition without a letter, which has one during the test. Returns whether it could be read.
template <typename ContentsTest>
int TestThroughTemporaryLetter(CVDSPartition& partitions, const Recognition& row, int partition,
                               const ContentsTest& matches, int& is) {
    const BOOL lettered = AssignLetter(partitions, partition);
    if (lettered) {
        is = TestContents(row, partitions.GetDriveLetter(), matches);
    } else {
        Log(row.notLettered);
    }
    DeleteLetter(partitions, partition);
    return lettered;
}

// Tests the selected partition, whose disk and partition numbers are given.
template <typename ContentsTest>
int Recognise(Kestova& kestova, CVDSPartition* partitions, const Recognition& row, int disk, int partition,
              const ContentsTest& matches, int& is) {
    LogRecord(LOG_LEVEL_TRACE).Text(row.start);
    int bRet = 0;
    is = 0;
    if (IsOfRecoveryType(partitions, row)) {
        const WCHAR letter = kestova.GetDriveLetter(disk, partition);
        if (letter != noLetter) {
            bRet = is = TestContents(row, letter, matches);
        } else {
            bRet = TestThroughTemporaryLetter(*partitions, row, partition, matches, is);
        }
    }
    LogRecord(LOG_LEVEL_TRACE).Text(row.end).Int(bRet).Text(row.answer).Int(is);
    return bRet;
}

}  // namespace

int Kestova::IsRecoveryPartition(int disk, int partition, int& is) {
    const auto matches = [this](WCHAR letter) { return IsRCVVolume(letter, TYPE_HDD); };
    return Recognise(*this, m_pVDSPartition, recoveryPartition, disk, partition, matches, is);
}

int Kestova::IsWinREPartition(int disk, int partition, int& is) {
    const auto matches = [this](WCHAR letter) { return IsWinREVolume(letter); };
    return Recognise(*this, m_pVDSPartition, winRePartition, disk, partition, matches, is);
}
