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
    const char* name;  // and the transcripts'
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
    static void ExpectStory(const Application& application, const std::string& story) {
        ExpectTranscript(application.pc.journal, std::string("manager/") + GetParam().name + "_" + story);
    }

    WCHAR letter = untouched;
};

INSTANTIATE_TEST_SUITE_P(Both, BootPartitionLetter, testing::ValuesIn(bootPartitions),
                         [](const auto& tested) { return std::string(tested.param.name); });

// --- giving it

TEST_P(BootPartitionLetter, IsTheFirstFreeOne) {
    Application application(FactoryGpt());
    EXPECT_EQ(Activate(application), 0);
    EXPECT_EQ(letter, TEXT('D'));
    EXPECT_EQ(Letters(application), "D");
    ExpectStory(application, "lettered");
}

TEST_P(BootPartitionLetter, IsTheOneThatIsThere) {
    Application application(WithLetters("S"));
    EXPECT_EQ(Activate(application), 0);
    EXPECT_EQ(letter, TEXT('S'));
    EXPECT_EQ(Letters(application), "S");
    EXPECT_TRUE(application.pc.journal.Calls("IVdsAdvancedDisk::AssignDriveLetter").empty());
    ExpectStory(application, "lettered_before");
}

TEST_P(BootPartitionLetter, IsNotGivenOnMbr) {
    Application application(FactoryMbr());
    EXPECT_EQ(Activate(application), ERROR_GET_PARTITION_TYPE);
    EXPECT_EQ(letter, untouched);
    EXPECT_EQ(application.pc.facts, FactoryMbr());
    ExpectStory(application, "on_mbr");
}

TEST_P(BootPartitionLetter, IsNotGivenToAMissingPartition) {
    Application application(WithoutPartition());
    EXPECT_EQ(Activate(application), ERROR_GET_PARTITION_TYPE);
    EXPECT_EQ(letter, untouched);
    ExpectStory(application, "missing");
}

TEST_P(BootPartitionLetter, IsNotGivenToAPartitionOfAnotherType) {
    Application application(WithType(GetParam().otherType));
    EXPECT_EQ(Activate(application), ERROR_NOT_ORVOBOOT_GUID);
    EXPECT_EQ(letter, untouched);
    EXPECT_EQ(Letters(application), "");
    ExpectStory(application, "other_type");
}

// The whole type is compared.
TEST_P(BootPartitionLetter, IsNotGivenWhenTheTypeDiffersInItsLastByte) {
    machine::Pc facts = FactoryGpt();
    PartitionOf(facts, GetParam().number).gptType.Data4[7] ^= 1;
    Application application(facts);
    EXPECT_EQ(Activate(application), ERROR_NOT_ORVOBOOT_GUID);
    EXPECT_EQ(Letters(application), "");
}

TEST_P(BootPartitionLetter, IsNotToldWhenItsAssignmentFails) {
    for (const bool afterEffect : {false, true}) {
        Application application(FactoryGpt());
        application.pc.faults.Arm(
            {.call = "IVdsAdvancedDisk::AssignDriveLetter", .afterEffect = afterEffect, .code = 0x80004005});
        EXPECT_EQ(Activate(application), ERROR_SET_DRIVE_LETTER);
        EXPECT_EQ(letter, untouched);
        EXPECT_EQ(Letters(application), afterEffect ? "D" : "");
        ExpectStory(application, "not_lettered");
    }
}

TEST_P(BootPartitionLetter, CannotBeGivenWhenAllAreTaken) {
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
TEST_P(BootPartitionLetter, IsGivenOnTheFirstInternalDisk) {
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

TEST_P(BootPartitionLetter, IsNotGivenWithoutAVolumeLayer) {
    Application application(FactoryGpt());
    const internals::WithoutVolumeLayer without(application.kestova);
    application.pc.journal.Clear();
    EXPECT_EQ(Activate(application), ERROR_GET_PARTITION_TYPE);
    EXPECT_EQ(letter, untouched);
    ExpectStory(application, "no_volume_layer");
}

// --- taking it

TEST_P(BootPartitionLetter, IsTakenWhoeverGaveIt) {
    Application application(WithLetters("S"));
    EXPECT_EQ(Disable(application), 0);
    EXPECT_EQ(Letters(application), "");
    ExpectStory(application, "letter_taken");
}

TEST_P(BootPartitionLetter, IsTakenTwiceWithoutAFailure) {
    Application application(FactoryGpt());
    EXPECT_EQ(Activate(application), 0);
    EXPECT_EQ(Disable(application), 0);
    EXPECT_EQ(application.pc.facts, FactoryGpt());
    application.pc.journal.Clear();
    EXPECT_EQ(Disable(application), 0);
    EXPECT_EQ(application.pc.facts, FactoryGpt());
    ExpectStory(application, "no_letter_to_take");
}

// The type is not looked at before.
TEST_P(BootPartitionLetter, IsTakenFromAPartitionOfAnotherType) {
    Application application(WithType(GetParam().otherType, "S"));
    EXPECT_EQ(Disable(application), 0);
    EXPECT_EQ(Letters(application), "");
}

TEST_P(BootPartitionLetter, StaysOnAPartitionThatMayNotBeLettered) {
    Application application(WithType(GetParam().letterlessType, "S"));
    EXPECT_EQ(Disable(application), ERROR_SET_DRIVE_LETTER);
    EXPECT_EQ(Letters(application), "S");
    ExpectStory(application, "letter_stays");
}

TEST_P(BootPartitionLetter, CannotBeTakenFromAMissingPartition) {
    Application application(WithoutPartition());
    EXPECT_EQ(Disable(application), ERROR_SET_DRIVE_LETTER);
}

TEST_P(BootPartitionLetter, MayBeGoneWhenTakingItFails) {
    for (const bool afterEffect : {false, true}) {
        Application application(WithLetters("S"));
        application.pc.faults.Arm(
            {.call = "IVdsAdvancedDisk::DeleteDriveLetter", .afterEffect = afterEffect, .code = 0x80004005});
        EXPECT_EQ(Disable(application), ERROR_SET_DRIVE_LETTER);
        EXPECT_EQ(Letters(application), afterEffect ? "" : "S");
        ExpectStory(application, "letter_not_taken");
    }
}

TEST_P(BootPartitionLetter, IsNotTakenWithoutAVolumeLayer) {
    Application application(WithLetters("S"));
    const internals::WithoutVolumeLayer without(application.kestova);
    application.pc.journal.Clear();
    EXPECT_EQ(Disable(application), ERROR_SET_DRIVE_LETTER);
    EXPECT_EQ(Letters(application), "S");
    ExpectStory(application, "letter_not_taken_without_volume_layer");
}

// On MBR the recovery partition is partition 1, and loses its letter.
TEST(DisableOrvoBootPartition, TakesTheLetterOfAnMbrRecoveryPartition) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 1).volume->letters = "R";
    Application application(facts);
    EXPECT_EQ(application.kestova.DisableOrvoBootPartition(), 0);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).volume->letters, "");
}

}  // namespace
