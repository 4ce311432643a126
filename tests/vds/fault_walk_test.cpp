// Every platform call of every operation fails once, and from one call on for good: nothing crashes, nothing
// is released twice, nothing is left but what the operation leaves by design, and the result is FALSE
// wherever the operation did not complete.
#include <functional>
#include <set>

#include "tests/support/fault_walk.h"
#include "tests/vds/vds_session.h"

namespace {

struct Operation {
    const char* name;
    std::function<machine::Pc()> pc;
    std::function<BOOL(CVDSPartition&)> call;
    // Calls whose failure the operation survives: it shortens a list, or is handled.
    std::set<std::string> survived = {};
};

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

machine::Pc LetteredRecovery() {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks[0].partitions[0].volume->letters = "R";
    return pc;
}

BOOL ListSecond(CVDSPartition& partition) {
    VDS_PARTITION_PROP* partitions = nullptr;
    LONG count = 0;
    const BOOL result = partition.QuerySecondPartitions(&partitions, &count);
    CoTaskMemFree(partitions);
    return result;
}

BOOL ActiveNumber(CVDSPartition& partition) {
    int number = 0;
    return partition.GetActivePartitionNumber(number);
}

BOOL Style(CVDSPartition& partition) {
    int style = 0;
    return partition.GetDiskPartitionStyle(style);
}

BOOL FirstNumber(CVDSPartition& partition) {
    int number = 0;
    return partition.GetFirstInternalDriveNumber(number);
}

BOOL GptType(CVDSPartition& partition) {
    GUID type = {};
    return partition.GetPartitionType(2, type);
}

BOOL LabelOfSecond(CVDSPartition& partition) {
    WCHAR label[16] = {};
    return partition.SelectDisk(0) && partition.SelectPartition(2) && partition.GetVolumeLabel(label, 16);
}

const Operation operations[] = {
    {"GetFirstInternalDriveNumber", machine::FactoryMbr, FirstNumber},
    {"GetDiskPartitionStyle", machine::FactoryMbr, Style},
    {"QuerySecondPartitions", machine::WinPeTwoDisks, ListSecond},
    {"GetActivePartitionNumber", machine::FactoryMbr, ActiveNumber},
    {"GetPartitionType", machine::FactoryGpt, GptType},
    {"GetVolumeLabel", machine::FactoryMbr, LabelOfSecond},
    {"SetActive", machine::FactoryMbr, [](CVDSPartition& partition) { return partition.SetActive(1); }},
    {"ClearActive", machine::FactoryMbr, [](CVDSPartition& partition) { return partition.ClearActive(); }},
    {"ChangePartitionType", machine::FactoryMbr,
     [](CVDSPartition& partition) { return partition.ChangePartitionType(2, MBR_ID_CACHE); }},
    {"SetDriveLetter assign",
     machine::FactoryMbr,
     [](CVDSPartition& partition) { return partition.SetDriveLetter(1, FLAG_ASSIGN); },
     {"IVdsAdvancedDisk::GetDriveLetter"}},
    {"SetDriveLetter delete",
     LetteredRecovery,
     [](CVDSPartition& partition) { return partition.SetDriveLetter(1, FLAG_DELETE); },
     {"IVdsAdvancedDisk::GetDriveLetter"}},
    {"SetDriveLetter query", LetteredRecovery,
     [](CVDSPartition& partition) { return partition.SetDriveLetter(1, FLAG_QUERY); }},
};

// Failures that every operation survives: the search for a setting file finds none, an unknown system counts
// as an installed Windows, or a walk over disks ends early.
const std::set<std::string> survivedByAll = {
    "GetModuleFileNameW",
    "PathFileExistsW",
    "CloseHandle",
    "PathRemoveFileSpecW",
    "PathAppendW",
    "RegOpenKeyExW",
    "RegQueryValueExW",
    "RegCloseKey",
    "IEnumVdsObject::Next",
    "IUnknown::QueryInterface",
    "IVdsSwProvider::QueryPacks",
    "IVdsPack::GetProperties",
    "IVdsPack::QueryDisks",
    "IVdsDisk::GetProperties",
};

std::string NameOf(const testing::TestParamInfo<Operation>& operation) {
    std::string name = operation.param.name;
    std::erase(name, ' ');
    return name;
}

// What the operation leaves by design is the strings of the disks' records; nothing else may be left.
void ExpectOnlyStringsLeft(VdsSession& session) {
    EXPECT_EQ(session.LeftBesideStrings(), Holdings());
}

}  // namespace

machine::Journal UndisturbedRun(const Operation& operation) {
    VdsSession session(operation.pc());
    EXPECT_TRUE(operation.call(*session));
    return session.pc.journal;
}

class VdsFaults : public testing::TestWithParam<Operation> {};

TEST_P(VdsFaults, EveryCallFails_ReturnsFalseAndLeavesNothing) {
    const Operation& operation = GetParam();
    const int visited = WalkFaults(UndisturbedRun(operation), [&](machine::FaultRule rule) {
        if (!IsHonest(rule)) return;
        VdsSession session(operation.pc());
        // A close that failed has closed all the same.
        rule.afterEffect = rule.call == "CloseHandle" || rule.call == "RegCloseKey";
        session.pc.faults.Arm(rule);
        const BOOL result = operation.call(*session);
        EXPECT_GT(session.pc.faults.Fired(), 0);
        const bool survived = survivedByAll.contains(rule.call) || operation.survived.contains(rule.call);
        EXPECT_TRUE(!result || survived);
        ExpectOnlyStringsLeft(session);
    });
    EXPECT_GT(visited, 0);
}

INSTANTIATE_TEST_SUITE_P(Operations, VdsFaults, testing::ValuesIn(operations), NameOf);
