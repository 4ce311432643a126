// The manager's questions about the internal disk, and the active flag.

#include <gtest/gtest.h>

#include "machine/model/machines.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using machine::EmulatedPc;
using machine::FactoryGpt;
using machine::FactoryMbr;
using testing::Test;

// An object whose volume layer could not be made.
class WithoutVolumeLayer : public Test {
  protected:
    WithoutVolumeLayer() : application_(FactoryMbr()) {
        internals::DropVolumeLayer(application_.kestova);
        application_.pc.journal.Clear();
    }
    std::string Records() const { return Transcript(application_.pc.journal); }

    Application application_;
    Kestova& kestova_ = application_.kestova;
};

TEST(GetFirstInternalDriveNumber, IsTheDiskOfTheInstalledWindows) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.GetFirstInternalDriveNumber(), 0);
    ExpectTranscript(application.pc.journal, "manager/get_first_internal_drive_number");
}

TEST(GetFirstInternalDriveNumber, IsNoneWhenTheVolumeLayerFindsNone) {
    // Windows on an NVMe disk: the lower layer names the disk, but no internal one matches.
    machine::Pc facts = FactoryMbr();
    facts.disks[0].busType = 17;
    Application application(facts);
    EXPECT_EQ(application.kestova.GetFirstInternalDriveNumber(), -1);
    ExpectTranscript(application.pc.journal, "manager/get_first_internal_drive_number_none");
}

TEST_F(WithoutVolumeLayer, GetFirstInternalDriveNumberIsNone) {
    EXPECT_EQ(kestova_.GetFirstInternalDriveNumber(), -1);
    EXPECT_EQ(Records(),
              "4 Kestova::GetFirstInternalDriveNumber\\tStart\n"
              "4 Kestova::GetFirstInternalDriveNumber\\tEnd. DriveNumber = {int -1}\n");
}

TEST(GetActivePartitionNumber, IsThePartitionThatBoots) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.GetActivePartitionNumber(), 2);
    ExpectTranscript(application.pc.journal, "manager/get_active_partition_number");
}

TEST(GetActivePartitionNumber, IsNoneOnGpt) {
    Application application(FactoryGpt());
    EXPECT_EQ(application.kestova.GetActivePartitionNumber(), -1);
    ExpectTranscript(application.pc.journal, "manager/get_active_partition_number_gpt");
}

TEST_F(WithoutVolumeLayer, GetActivePartitionNumberIsNone) {
    EXPECT_EQ(kestova_.GetActivePartitionNumber(), -1);
    EXPECT_EQ(Records(),
              "4 Kestova::GetActivePartitionNumber\\tStart\n"
              "4 Kestova::GetActivePartitionNumber\\tEnd. PartitionNumber = {int -1}\n");
}

TEST(SetActive, AnswersZeroAndClearsNoOtherFlag) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.SetActive(1), 0);
    EXPECT_EQ(ActivePartitions(application.pc), (std::vector<uint32_t>{1, 2}));
    ExpectTranscript(application.pc.journal, "manager/set_active");
}

TEST(SetActive, OfAMissingPartitionAnswersOne) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.SetActive(9), 1);
    EXPECT_EQ(ActivePartitions(application.pc), std::vector<uint32_t>{2});
    ExpectTranscript(application.pc.journal, "manager/set_active_missing");
}

TEST_F(WithoutVolumeLayer, SetActiveAnswersZero) {
    EXPECT_EQ(kestova_.SetActive(1), 0);
    EXPECT_EQ(Records(), "4 Kestova::SetActive\\tStart\n4 Kestova::SetActive\\tEnd. iRet = {int 0}\n");
    EXPECT_EQ(ActivePartitions(application_.pc), std::vector<uint32_t>{2});
}

TEST(ClearActive, AnswersZeroAndLeavesNoFlag) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.ClearActive(), 0);
    EXPECT_TRUE(ActivePartitions(application.pc).empty());
    ExpectTranscript(application.pc.journal, "manager/clear_active");
}

TEST(ClearActive, AnswersOneWhenAFlagCannotBeCleared) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::ChangeAttributes", .code = 0x80042400});
    EXPECT_EQ(application.kestova.ClearActive(), 1);
    EXPECT_EQ(ActivePartitions(application.pc), std::vector<uint32_t>{2});
    ExpectTranscript(application.pc.journal, "manager/clear_active_refused");
}

TEST_F(WithoutVolumeLayer, ClearActiveAnswersZero) {
    EXPECT_EQ(kestova_.ClearActive(), 0);
    EXPECT_EQ(Records(),
              "4 Kestova::ClearActive\\t\\tStart\n4 Kestova::ClearActive\\t\\tEnd. iRet = {int 0}\n");
}

TEST(GetDiskStyle, TellsMbr) {
    Application application(FactoryMbr());
    THardDiskType style = HARD_DISK_UNKNOWN;
    EXPECT_EQ(application.kestova.GetDiskStyle(style), 1);
    EXPECT_EQ(style, HARD_DISK_MBR);
    ExpectTranscript(application.pc.journal, "manager/get_disk_style_mbr");
}

TEST(GetDiskStyle, TellsGpt) {
    Application application(FactoryGpt());
    THardDiskType style = HARD_DISK_UNKNOWN;
    EXPECT_EQ(application.kestova.GetDiskStyle(style), 1);
    EXPECT_EQ(style, HARD_DISK_GPT);
    ExpectTranscript(application.pc.journal, "manager/get_disk_style_gpt");
}

struct FailingStep {
    const char* name;
    const char* call;
    uint32_t nth;
    uint32_t code;
};

class GetDiskStyleFailure : public testing::TestWithParam<FailingStep> {};

TEST_P(GetDiskStyleFailure, SucceedsWithAnUnknownStyle) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = GetParam().call, .nth = GetParam().nth, .code = GetParam().code});
    THardDiskType style = HARD_DISK_GPT;
    EXPECT_EQ(application.kestova.GetDiskStyle(style), 1);
    EXPECT_EQ(style, HARD_DISK_UNKNOWN);
    EXPECT_EQ(application.pc.faults.Fired(), 1);
    ExpectTranscript(application.pc.journal,
                     std::string("manager/get_disk_style_failure_") + GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(Step, GetDiskStyleFailure,
                         testing::Values(FailingStep{"no_internal_disk", "GetDriveTypeW", 1, 2},
                                         FailingStep{"selection", "IVdsService::GetObject", 1, 0x80042405},
                                         FailingStep{"partitions", "IVdsAdvancedDisk::QueryPartitions", 1,
                                                     0x8004242B}),
                         [](const auto& tested) { return tested.param.name; });

TEST_F(WithoutVolumeLayer, GetDiskStyleAnswersZeroAndUnknown) {
    THardDiskType style = HARD_DISK_MBR;
    EXPECT_EQ(kestova_.GetDiskStyle(style), 0);
    EXPECT_EQ(style, HARD_DISK_UNKNOWN);
    EXPECT_EQ(
        Records(),
        "4 Kestova::GetDiskStyle\\t\\tStart\n4 Kestova::GetDiskStyle\\t\\tEnd. enumDiskStyle = {int 0}\n");
}

constexpr const char* noLetter =
    "4 Kestova::GetDriveLetter\\tStart\n4 Kestova::GetDriveLetter\\tEnd. Driver is 0\n";

std::string LetterFound(char letter) {
    return std::string(
               "4 Kestova::GetDriveLetter\\tStart\n4 Kestova::GetDriveLetter\\tEnd. Driver is {char ") +
           letter + "}\n";
}

// The letter of partition 2 of disk 0, with the handles closed that were opened on the way.
std::string LetterOfPartitionTwo(Application& application) {
    const auto before = application.pc.ledger.Outstanding();
    const WCHAR letter = application.kestova.GetDriveLetter(0, 2);
    EXPECT_EQ(application.pc.ledger.Outstanding(), before);
    EXPECT_EQ(Transcript(application.pc.journal),
              letter == TEXT('0') ? noLetter : LetterFound(static_cast<char>(letter)));
    return std::string(1, static_cast<char>(letter));
}

TEST(GetDriveLetter, IsTheLetterOfThePartition) {
    Application application(FactoryMbr());
    EXPECT_EQ(LetterOfPartitionTwo(application), "C");
}

TEST(GetDriveLetter, IsTheFirstInTheAlphabetOfTwo) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->letters = "TF";
    facts.system.windowsDirectory = "F:\\Windows";
    Application application(facts);
    EXPECT_EQ(LetterOfPartitionTwo(application), "F");
}

TEST(GetDriveLetter, IsNoneWithoutALetter) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.GetDriveLetter(0, 1), TEXT('0'));
    EXPECT_EQ(Transcript(application.pc.journal), noLetter);
}

TEST(GetDriveLetter, IsNoneOnAnotherDisk) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.GetDriveLetter(1, 2), TEXT('0'));
    EXPECT_EQ(Transcript(application.pc.journal), noLetter);
}

TEST(GetDriveLetter, IsNoneOnARemovableDrive) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->driveType = machine::DriveType::Removable;
    Application application(facts);
    EXPECT_EQ(LetterOfPartitionTwo(application), "0");
}

TEST(GetDriveLetter, IsNoneForAVolumeOnTwoExtents) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->furtherExtents = {{0, uint64_t{499} << 30, uint64_t{1} << 20}};
    Application application(facts);
    EXPECT_EQ(LetterOfPartitionTwo(application), "0");
}

TEST(GetDriveLetter, IsNoneForAVolumeThatCannotBeOpened) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->openError = ERROR_ACCESS_DENIED;
    Application application(facts);
    EXPECT_EQ(LetterOfPartitionTwo(application), "0");
}

TEST(GetDriveLetter, SkipsAVolumeWhoseControlFails) {
    // The first control asks C: for its extents, the second for its partition.
    for (const uint32_t nth : {1U, 2U}) {
        Application application(FactoryMbr());
        application.pc.faults.Arm({.call = "DeviceIoControl", .nth = nth, .code = ERROR_NOT_READY});
        EXPECT_EQ(LetterOfPartitionTwo(application), "0");
        EXPECT_EQ(application.pc.faults.Fired(), 1);
    }
}

TEST(GetDriveLetter, NeedsNoInitialisation) {
    EmulatedPc pc(FactoryMbr());
    Kestova kestova;
    EXPECT_EQ(kestova.GetDriveLetter(0, 3), TEXT('D'));
}

}  // namespace
