// Choosing what the machine boots. Each test is a PC, one switch, and three expectations: the code with its
// transcript, the active flags, and SystemVolume.ini.

#include <gtest/gtest.h>

#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using Flags = std::vector<uint32_t>;
using Ini = std::optional<std::string>;

constexpr const char* changeAttributes = "IVdsAdvancedDisk::ChangeAttributes";
constexpr const char* writeProfile = "WritePrivateProfileStringW";
constexpr uint32_t refused = 0x80042400;

// The factory machine with some partition active and some record.
machine::Pc Factory(uint32_t active, const Ini& record = std::nullopt) {
    machine::Pc facts = machine::FactoryMbr();
    for (machine::Partition& partition : facts.disks[0].partitions) {
        partition.bootIndicator = partition.number == active;
    }
    if (record) PartitionOf(facts, 1).volume->files.PutFile("SystemVolume.ini", *record);
    facts.switches.activeFlagIsExclusive = true;
    return facts;
}

machine::Pc WithoutMedia(machine::Pc facts) {
    PartitionOf(facts, 1).volume->files = {};
    return facts;
}

machine::Pc WithUnknownActiveNumber(machine::Pc facts) {
    PartitionOf(facts, 2).number = 0xFFFFFFFF;
    return facts;
}

Ini Record(int partition) {
    return "[System]\r\nActive=" + std::to_string(partition) + "\r\n";
}

using Switch = int (Kestova::*)();

struct Story {
    const char* name;
    Switch operation;
    machine::Pc facts;
    std::vector<machine::FaultRule> faults;
    int code;
    Flags flags;
    Ini ini;
};

void PrintTo(const Story& story, std::ostream* out) {
    *out << story.name;
}

class BootSwitch : public testing::TestWithParam<Story> {};

TEST_P(BootSwitch, Pc_ReturnsCodeAndSetsFlagsAndRecord) {
    const Story& story = GetParam();
    Application application(story.facts);
    for (const machine::FaultRule& fault : story.faults)
        application.pc.faults.Arm(fault);
    EXPECT_EQ((application.kestova.*story.operation)(), story.code);
    EXPECT_EQ(ActivePartitions(application.pc), story.flags);
    EXPECT_EQ(SystemVolumeIni(application.pc), story.ini);
    EXPECT_EQ(application.pc.faults.Fired() > 0, !story.faults.empty());
    ExpectTranscript(application.pc.journal);
}

const Story stories[] = {
    // --- to the recovery partition, recording the system ---
    {"set_rcvprt_active", &Kestova::SetRcvprtActive, Factory(2), {}, 0, {1}, Record(2)},
    {"set_rcvprt_active_from_three", &Kestova::SetRcvprtActive, Factory(3), {}, 0, {1}, Record(3)},
    {"set_rcvprt_active_already", &Kestova::SetRcvprtActive, Factory(1, Record(3)), {}, 0, {1}, Record(3)},
    {"set_rcvprt_active_code_1", &Kestova::SetRcvprtActive, Factory(0), {}, 1, {}, {}},
    {"set_rcvprt_active_code_2",
     &Kestova::SetRcvprtActive,
     WithUnknownActiveNumber(Factory(2)),
     {},
     2,
     {0xFFFFFFFF},
     {}},
    {"set_rcvprt_active_code_3", &Kestova::SetRcvprtActive, WithoutMedia(Factory(2)), {}, 3, {2}, {}},
    {"set_rcvprt_active_code_4",
     &Kestova::SetRcvprtActive,
     Factory(2),
     {{.call = writeProfile, .code = 5}},
     4,
     {2},
     {}},
    {"set_rcvprt_active_code_5",
     &Kestova::SetRcvprtActive,
     Factory(2),
     {{.call = changeAttributes, .nth = 1, .code = refused}},
     5,
     {2},
     {}},
    // The flag moved although the call said no: the old one is set again.
    {"set_rcvprt_active_code_5_after_effect",
     &Kestova::SetRcvprtActive,
     Factory(2),
     {{.call = changeAttributes, .nth = 1, .afterEffect = true, .code = refused}},
     5,
     {2},
     {}},
    {"set_rcvprt_active_code_5_for_good",
     &Kestova::SetRcvprtActive,
     Factory(2),
     {{.call = changeAttributes, .code = refused}},
     5,
     {2},
     {}},

    // --- to the recovery partition, keeping only a record that says something ---
    {"set_p_one_active_drops_two", &Kestova::SetPOneActive, Factory(2), {}, 0, {1}, {}},
    {"set_p_one_active_keeps_three", &Kestova::SetPOneActive, Factory(3), {}, 0, {1}, Record(3)},
    {"set_p_one_active_already_no_record", &Kestova::SetPOneActive, Factory(1), {}, 0, {1}, {}},
    {"set_p_one_active_already_keeps_three",
     &Kestova::SetPOneActive,
     Factory(1, Record(3)),
     {},
     0,
     {1},
     Record(3)},
    {"set_p_one_active_already_drops_two", &Kestova::SetPOneActive, Factory(1, Record(2)), {}, 0, {1}, {}},
    {"set_p_one_active_already_drops_word",
     &Kestova::SetPOneActive,
     Factory(1, "[System]\r\nActive=abc\r\n"),
     {},
     0,
     {1},
     {}},
    {"set_p_one_active_already_drops_empty",
     &Kestova::SetPOneActive,
     Factory(1, "[System]\r\nActive=\r\n"),
     {},
     0,
     {1},
     {}},
    {"set_p_one_active_already_drops_no_value",
     &Kestova::SetPOneActive,
     Factory(1, "[Other]\r\n"),
     {},
     0,
     {1},
     {}},
    {"set_p_one_active_code_1", &Kestova::SetPOneActive, Factory(0), {}, 1, {}, {}},
    {"set_p_one_active_code_2",
     &Kestova::SetPOneActive,
     WithUnknownActiveNumber(Factory(2)),
     {},
     2,
     {0xFFFFFFFF},
     {}},
    {"set_p_one_active_code_3", &Kestova::SetPOneActive, WithoutMedia(Factory(2)), {}, 3, {2}, {}},
    {"set_p_one_active_code_4",
     &Kestova::SetPOneActive,
     Factory(2),
     {{.call = writeProfile, .code = 5}},
     4,
     {2},
     {}},
    {"set_p_one_active_code_5",
     &Kestova::SetPOneActive,
     Factory(2),
     {{.call = changeAttributes, .nth = 1, .code = refused}},
     5,
     {2},
     {}},
    {"set_p_one_active_code_6",
     &Kestova::SetPOneActive,
     Factory(2),
     {{.call = "DeleteFileW", .code = 5}},
     6,
     {1},
     Record(2)},

    // --- back to the system ---
    {"set_system_active", &Kestova::SetSystemActive, Factory(1, Record(3)), {}, 0, {3}, {}},
    {"set_system_active_no_record", &Kestova::SetSystemActive, Factory(1), {}, 0, {2}, {}},
    {"set_system_active_nothing_to_do", &Kestova::SetSystemActive, Factory(3), {}, 0, {3}, {}},
    {"set_system_active_record_word",
     &Kestova::SetSystemActive,
     Factory(1, "[System]\r\nActive=abc\r\n"),
     {},
     0,
     {2},
     {}},
    {"set_system_active_record_empty",
     &Kestova::SetSystemActive,
     Factory(1, "[System]\r\nActive=\r\n"),
     {},
     0,
     {2},
     {}},
    {"set_system_active_record_no_value",
     &Kestova::SetSystemActive,
     Factory(1, "[System]\r\nActive=_no_value_\r\n"),
     {},
     0,
     {2},
     {}},
    {"set_system_active_record_while_system_runs",
     &Kestova::SetSystemActive,
     Factory(2, Record(3)),
     {},
     0,
     {3},
     {}},
    {"set_system_active_code_1", &Kestova::SetSystemActive, Factory(0), {}, 1, {}, {}},
    {"set_system_active_code_2",
     &Kestova::SetSystemActive,
     WithUnknownActiveNumber(Factory(2)),
     {},
     2,
     {0xFFFFFFFF},
     {}},
    {"set_system_active_code_3", &Kestova::SetSystemActive, WithoutMedia(Factory(1)), {}, 3, {1}, {}},
    {"set_system_active_code_4",
     &Kestova::SetSystemActive,
     Factory(1, Record(3)),
     {{.call = changeAttributes, .code = refused}},
     4,
     {1},
     Record(3)},
    {"set_system_active_code_4_no_such_partition",
     &Kestova::SetSystemActive,
     Factory(1, Record(9)),
     {},
     4,
     {1},
     Record(9)},
    {"set_system_active_code_5",
     &Kestova::SetSystemActive,
     Factory(1, Record(3)),
     {{.call = "DeleteFileW", .code = 5}},
     5,
     {3},
     Record(3)},

    // --- to partition 2, whatever was recorded ---
    {"set_p_two_active", &Kestova::SetPTwoActive, Factory(1, Record(3)), {}, 0, {2}, {}},
    {"set_p_two_active_no_record", &Kestova::SetPTwoActive, Factory(1), {}, 0, {2}, {}},
    {"set_p_two_active_code_1",
     &Kestova::SetPTwoActive,
     Factory(3, Record(3)),
     {{.call = changeAttributes, .nth = 1, .code = refused}},
     1,
     {1},
     Record(3)},
    {"set_p_two_active_code_2", &Kestova::SetPTwoActive, WithoutMedia(Factory(1)), {}, 2, {2}, {}},
    {"set_p_two_active_code_3",
     &Kestova::SetPTwoActive,
     Factory(1, Record(3)),
     {{.call = "DeleteFileW", .code = 5}},
     3,
     {2},
     Record(3)},
};

std::string StoryName(const testing::TestParamInfo<Story>& tested) {
    return tested.param.name;
}

INSTANTIATE_TEST_SUITE_P(Story, BootSwitch, testing::ValuesIn(stories), StoryName);

// The calls that change the record or a flag, in their order.
std::vector<std::string> Changes(const Application& application) {
    std::vector<std::string> changes;
    for (const machine::CallRecord& call : application.pc.journal.Calls()) {
        if (call.call == writeProfile || call.call == changeAttributes || call.call == "DeleteFileW")
            changes.push_back(call.call);
    }
    return changes;
}

// --- where the platform clears no other flag ---

TEST(SetRcvprtActive, PlatformKeepsOtherFlags_ClearsNone) {
    machine::Pc facts = Factory(2);
    facts.switches.activeFlagIsExclusive = false;
    Application application(facts);
    EXPECT_EQ(application.kestova.SetRcvprtActive(), 0);
    EXPECT_EQ(ActivePartitions(application.pc), (Flags{1, 2}));
    EXPECT_EQ(SystemVolumeIni(application.pc), Record(2));
    ExpectTranscript(application.pc.journal);
}

TEST(SetRcvprtActive, FactoryMbr_WritesTheRecordBeforeTheFlagMoves) {
    Application application(Factory(2));
    ASSERT_EQ(application.kestova.SetRcvprtActive(), 0);
    EXPECT_EQ(Changes(application), (std::vector<std::string>{writeProfile, changeAttributes}));
}

struct NamedSwitch {
    const char* name;
    Switch operation;
};

void PrintTo(const NamedSwitch& named, std::ostream* out) {
    *out << named.name;
}

// First the record goes, then the former flag is set again.
class FailedSwitchToRecovery : public testing::TestWithParam<NamedSwitch> {};

TEST_P(FailedSwitchToRecovery, RefusedFlag_DeletesTheRecordBeforeTheFlagMovesBack) {
    Application application(Factory(3));
    application.pc.faults.Arm({.call = changeAttributes, .nth = 1, .code = refused});
    ASSERT_EQ((application.kestova.*GetParam().operation)(), 5);
    EXPECT_EQ(Changes(application),
              (std::vector<std::string>{writeProfile, changeAttributes, "DeleteFileW", changeAttributes}));
}

constexpr NamedSwitch toRecovery[] = {
    {"SetRcvprtActive", &Kestova::SetRcvprtActive},
    {"SetPOneActive", &Kestova::SetPOneActive},
};

INSTANTIATE_TEST_SUITE_P(Both, FailedSwitchToRecovery, testing::ValuesIn(toRecovery),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(SetPOneActive, RecordOfAnyNumberButTwo_IsKept) {
    for (const int number : {-1, 0, 1, 4}) {
        Application application(Factory(1, Record(number)));
        EXPECT_EQ(application.kestova.SetPOneActive(), 0);
        EXPECT_EQ(SystemVolumeIni(application.pc), Record(number));
        EXPECT_TRUE(Transcript(application.pc.journal).ends_with("4 Kestova::SetPOneActive\\t\\tEnd\n"));
    }
}

TEST(SetPOneActive, FileGoneAfterTheSwitch_Returns0AndRecordsItsPath) {
    Application application(Factory(1));
    PartitionOf(application.pc.facts, 1).volume->letters = "R";
    EXPECT_EQ(application.kestova.SetPOneActive(), 0);
    const std::string transcript = Transcript(application.pc.journal);
    EXPECT_TRUE(
        transcript.ends_with("1 Kestova::SetPOneActive\\tPathFileExists bReturn is FALSE.(5)\n"
                             "1 R:\\SystemVolume.ini\n"));
}

// --- GPT, where nothing can be active ---

class BootSwitchOnGpt : public testing::TestWithParam<NamedSwitch> {};

TEST_P(BootSwitchOnGpt, FactoryGpt_Returns1AndChangesNothing) {
    Application application(machine::FactoryGpt());
    const machine::Pc before = application.pc.facts;
    EXPECT_EQ((application.kestova.*GetParam().operation)(), 1);
    EXPECT_EQ(application.pc.facts, before);
    ExpectTranscript(application.pc.journal);
}

constexpr NamedSwitch switches[] = {
    {"set_rcvprt_active", &Kestova::SetRcvprtActive},
    {"set_system_active", &Kestova::SetSystemActive},
    {"set_p_one_active", &Kestova::SetPOneActive},
    {"set_p_two_active", &Kestova::SetPTwoActive},
};

INSTANTIATE_TEST_SUITE_P(Every, BootSwitchOnGpt, testing::ValuesIn(switches),
                         [](const auto& tested) { return tested.param.name; });

// --- an object whose volume layer could not be made ---

struct WithoutLayer {
    const char* name;
    Switch operation;
    const char* transcript;
};

void PrintTo(const WithoutLayer& withoutLayer, std::ostream* out) {
    *out << withoutLayer.name;
}

class BootSwitchWithoutVolumeLayer : public testing::TestWithParam<WithoutLayer> {};

TEST_P(BootSwitchWithoutVolumeLayer, NoVolumeLayer_Returns1) {
    Application application(Factory(2));
    const internals::WithoutVolumeLayer without(application.kestova);
    application.pc.journal.Clear();
    EXPECT_EQ((application.kestova.*GetParam().operation)(), 1);
    EXPECT_EQ(Transcript(application.pc.journal), GetParam().transcript);
}

constexpr WithoutLayer withoutLayer[] = {
    {"SetRcvprtActive", &Kestova::SetRcvprtActive,
     "4 Kestova::SetRcvprtActive\\t\\tStart\n"
     "1 Kestova::SetRcvprtActive\\tGetActivePartitionNumber return False. 1\n"},
    {"SetSystemActive", &Kestova::SetSystemActive,
     "4 Kestova::SetSystemActive\\t\\tStart\n"
     "4 Kestova::SetSystemActive\\t\\tGetActivePartitionNumber return false. 1\n"},
    {"SetPOneActive", &Kestova::SetPOneActive,
     "4 Kestova::SetPOneActive\\t\\tStart\n"
     "1 Kestova::SetPOneActive\\tGetActivePartitionNumber bReturn is FALSE. (1)\n"},
    {"SetPTwoActive", &Kestova::SetPTwoActive, "4 Kestova::SetPTwoActive\\t\\tStart\n"},
};

INSTANTIATE_TEST_SUITE_P(Every, BootSwitchWithoutVolumeLayer, testing::ValuesIn(withoutLayer),
                         [](const auto& tested) { return tested.param.name; });

// --- how the platform reports a partition without a letter ---

struct LetterlessAnswer {
    const char* name;
    machine::Switches::Letterless answer;
};

void PrintTo(const LetterlessAnswer& letterless, std::ostream* out) {
    *out << letterless.name;
}

class Letterless : public testing::TestWithParam<LetterlessAnswer> {};

TEST_P(Letterless, RecoveryPartition_SetRcvprtActive_AssignsALetter) {
    machine::Pc facts = Factory(2);
    facts.switches.letterless = GetParam().answer;
    Application application(facts);
    EXPECT_EQ(application.kestova.SetRcvprtActive(), 0);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).volume->letters, "E");
    EXPECT_EQ(SystemVolumeIni(application.pc), Record(2));
}

constexpr LetterlessAnswer letterlessAnswers[] = {
    {"Fails", machine::Switches::Letterless::Fails},
    {"Nul", machine::Switches::Letterless::Nul},
    {"Zero", machine::Switches::Letterless::Zero},
};

INSTANTIATE_TEST_SUITE_P(Every, Letterless, testing::ValuesIn(letterlessAnswers),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
