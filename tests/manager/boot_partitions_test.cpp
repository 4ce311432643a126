// Letters on demand for the maker's boot partition and the EFI system partition.

#include <gtest/gtest.h>

#include "machine/facts/machines.h"
#include "manager/result_codes.h"
#include "platform/partition_types.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using machine::FactoryGpt;
using machine::FactoryMbr;

constexpr WCHAR untouched = TEXT('q');

// One of the two partitions, with its operations.
struct BootPartition {
    const char* name;
    uint32_t number;
    int (Kestova::*active)(WCHAR&);
    int (Kestova::*disable)();
    // Types that belong to other partitions: one that can have a letter and one that cannot.
    GUID otherType;
    GUID letterlessType;
};

void PrintTo(const BootPartition& partition, std::ostream* out) {
    *out << partition.name;
}

const BootPartition bootPartitions[] = {
    {"orvo_boot", 1, &Kestova::ActiveOrvoBootPartition, &Kestova::DisableOrvoBootPartition,
     PARTITION_SYSTEM_GUID, PARTITION_MSFT_RESERVED_GUID},
    {"gpt_system", 3, &Kestova::ActiveGPTSystemPartition, &Kestova::DisableGPTSystemPartition, ORVOBOOT_GUID,
     PARTITION_MSFT_RESERVED_GUID},
};

class BootPartitionLetter : public testing::TestWithParam<BootPartition> {
  protected:
    // A factory PC whose partition of the test has these letters.
    static machine::Pc WithLetters(const std::string& letters, machine::Pc facts = FactoryGpt()) {
        PartitionOf(facts, GetParam().number).volume->letters = letters;
        return facts;
    }
    static machine::Pc WithType(const GUID& type, const std::string& letters = "") {
        machine::Pc facts = WithLetters(letters);
        PartitionOf(facts, GetParam().number).gptType = type;
        return facts;
    }
    static machine::Pc WithoutPartition() {
        machine::Pc facts = FactoryGpt();
        std::erase_if(facts.disks[0].partitions,
                      [](const auto& partition) { return partition.number == GetParam().number; });
        return facts;
    }

    // Activates and answers the code; `letter` receives the letter.
    int Activate(Application& application) {
        const int code = (application.kestova.*GetParam().active)(letter);
        ExpectOnlyKeptLeftovers(application.pc.ledger);
        return code;
    }
    static int Disable(Application& application) {
        const int code = (application.kestova.*GetParam().disable)();
        ExpectOnlyKeptLeftovers(application.pc.ledger);
        return code;
    }
    static std::string Letters(Application& application) {
        return PartitionOf(application.pc.facts, GetParam().number).volume->letters;
    }

    WCHAR letter = untouched;
};

INSTANTIATE_TEST_SUITE_P(Both, BootPartitionLetter, testing::ValuesIn(bootPartitions),
                         [](const auto& tested) { return std::string(tested.param.name); });

// --- giving it

TEST_P(BootPartitionLetter, FactoryGpt_AssignsTheFirstFreeLetter) {
    Application application(FactoryGpt());
    EXPECT_EQ(Activate(application), 0);
    EXPECT_EQ(letter, TEXT('D'));
    EXPECT_EQ(Letters(application), "D");
    ExpectTranscript(application.pc.journal);
}

TEST_P(BootPartitionLetter, LetteredPartition_ReturnsItsLetter) {
    Application application(WithLetters("S"));
    EXPECT_EQ(Activate(application), 0);
    EXPECT_EQ(letter, TEXT('S'));
    EXPECT_EQ(Letters(application), "S");
    EXPECT_TRUE(application.pc.journal.Calls("IVdsAdvancedDisk::AssignDriveLetter").empty());
    ExpectTranscript(application.pc.journal);
}

TEST_P(BootPartitionLetter, FactoryMbr_AssignsNone) {
    Application application(FactoryMbr());
    EXPECT_EQ(Activate(application), ERROR_GET_PARTITION_TYPE);
    EXPECT_EQ(letter, untouched);
    EXPECT_EQ(application.pc.facts, FactoryMbr());
    ExpectTranscript(application.pc.journal);
}

TEST_P(BootPartitionLetter, MissingPartition_AssignsNone) {
    Application application(WithoutPartition());
    EXPECT_EQ(Activate(application), ERROR_GET_PARTITION_TYPE);
    EXPECT_EQ(letter, untouched);
    ExpectTranscript(application.pc.journal);
}

TEST_P(BootPartitionLetter, OtherType_AssignsNone) {
    Application application(WithType(GetParam().otherType));
    EXPECT_EQ(Activate(application), ERROR_NOT_ORVOBOOT_GUID);
    EXPECT_EQ(letter, untouched);
    EXPECT_EQ(Letters(application), "");
    ExpectTranscript(application.pc.journal);
}

// The whole type is compared.
TEST_P(BootPartitionLetter, TypeThatDiffersInItsLastByte_AssignsNone) {
    machine::Pc facts = FactoryGpt();
    PartitionOf(facts, GetParam().number).gptType.Data4[7] ^= 1;
    Application application(facts);
    EXPECT_EQ(Activate(application), ERROR_NOT_ORVOBOOT_GUID);
    EXPECT_EQ(Letters(application), "");
}

TEST_P(BootPartitionLetter, RefusedLetter_ReturnsNone) {
    for (const bool afterEffect : {false, true}) {
        Application application(FactoryGpt());
        application.pc.faults.Arm(
            {.call = "IVdsAdvancedDisk::AssignDriveLetter", .afterEffect = afterEffect, .code = 0x80004005});
        EXPECT_EQ(Activate(application), ERROR_SET_DRIVE_LETTER);
        EXPECT_EQ(letter, untouched);
        EXPECT_EQ(Letters(application), afterEffect ? "D" : "");
        ExpectTranscript(application.pc.journal);
    }
}

TEST_P(BootPartitionLetter, NoFreeLetter_ReturnsNone) {
    machine::Pc facts = FactoryGpt();
    for (char taken = 'A'; taken <= 'Z'; ++taken) {
        if (taken == 'C') continue;
        machine::Volume volume;
        volume.letters = std::string(1, taken);
        facts.volumes.push_back(volume);
    }
    Application application(facts);
    EXPECT_EQ(Activate(application), ERROR_SET_DRIVE_LETTER);
    EXPECT_EQ(letter, untouched);
    EXPECT_EQ(Letters(application), "");
}

// Whatever disk was looked at before.
TEST_P(BootPartitionLetter, OtherDiskSelected_ActsOnTheFirstInternalDisk) {
    machine::Pc facts = FactoryGpt();
    facts.disks.push_back(FactoryMbr().disks.front());
    facts.disks[1].number = 1;
    facts.disks[1].vdsName = "\\\\?\\PhysicalDrive1";
    for (machine::Partition& partition : facts.disks[1].partitions)
        if (partition.volume) partition.volume->letters = "";
    Application application(facts);
    application.kestova.IsNeedHidePartition(1, 1);
    EXPECT_EQ(Activate(application), 0);
    EXPECT_EQ(Letters(application), "D");
    EXPECT_EQ(application.pc.facts.disks[1], facts.disks[1]);
}

TEST_P(BootPartitionLetter, NoVolumeLayer_AssignsNone) {
    Application application(FactoryGpt());
    const internals::WithoutVolumeLayer without(application.kestova);
    application.pc.journal.Clear();
    EXPECT_EQ(Activate(application), ERROR_GET_PARTITION_TYPE);
    EXPECT_EQ(letter, untouched);
    ExpectTranscript(application.pc.journal);
}

// --- taking it

TEST_P(BootPartitionLetter, LetteredPartition_Disable_TakesTheLetter) {
    Application application(WithLetters("S"));
    EXPECT_EQ(Disable(application), 0);
    EXPECT_EQ(Letters(application), "");
    ExpectTranscript(application.pc.journal);
}

TEST_P(BootPartitionLetter, LetterlessPartition_Disable_Succeeds) {
    Application application(FactoryGpt());
    EXPECT_EQ(Activate(application), 0);
    EXPECT_EQ(Disable(application), 0);
    EXPECT_EQ(application.pc.facts, FactoryGpt());
    application.pc.journal.Clear();
    EXPECT_EQ(Disable(application), 0);
    EXPECT_EQ(application.pc.facts, FactoryGpt());
    ExpectTranscript(application.pc.journal);
}

// The type is not looked at before.
TEST_P(BootPartitionLetter, OtherType_Disable_TakesTheLetter) {
    Application application(WithType(GetParam().otherType, "S"));
    EXPECT_EQ(Disable(application), 0);
    EXPECT_EQ(Letters(application), "");
}

TEST_P(BootPartitionLetter, TypeThatMayNotBeLettered_Disable_LeavesTheLetter) {
    Application application(WithType(GetParam().letterlessType, "S"));
    EXPECT_EQ(Disable(application), ERROR_SET_DRIVE_LETTER);
    EXPECT_EQ(Letters(application), "S");
    ExpectTranscript(application.pc.journal);
}

TEST_P(BootPartitionLetter, MissingPartition_Disable_Fails) {
    Application application(WithoutPartition());
    EXPECT_EQ(Disable(application), ERROR_SET_DRIVE_LETTER);
}

TEST_P(BootPartitionLetter, RefusedDeletion_Disable_FailsWhetherTheLetterIsGoneOrNot) {
    for (const bool afterEffect : {false, true}) {
        Application application(WithLetters("S"));
        application.pc.faults.Arm(
            {.call = "IVdsAdvancedDisk::DeleteDriveLetter", .afterEffect = afterEffect, .code = 0x80004005});
        EXPECT_EQ(Disable(application), ERROR_SET_DRIVE_LETTER);
        EXPECT_EQ(Letters(application), afterEffect ? "" : "S");
        ExpectTranscript(application.pc.journal);
    }
}

TEST_P(BootPartitionLetter, NoVolumeLayer_Disable_Fails) {
    Application application(WithLetters("S"));
    const internals::WithoutVolumeLayer without(application.kestova);
    application.pc.journal.Clear();
    EXPECT_EQ(Disable(application), ERROR_SET_DRIVE_LETTER);
    EXPECT_EQ(Letters(application), "S");
    ExpectTranscript(application.pc.journal);
}

// On MBR the recovery partition is partition 1, and loses its letter.
TEST(DisableOrvoBootPartition, FactoryMbr_TakesTheLetterOfTheRecoveryPartition) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 1).volume->letters = "R";
    Application application(facts);
    EXPECT_EQ(application.kestova.DisableOrvoBootPartition(), 0);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).volume->letters, "");
}

}  // namespace
