// Where a letter leads, and which letter leads to a partition.

#include <gmock/gmock.h>

#include "machine/facts/machines.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using machine::EmulatedPc;
using machine::FactoryMbr;
using testing::ElementsAre;
using testing::IsEmpty;

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

TEST(GetDriveLetter, LetteredPartition_ReturnsItsLetter) {
    Application application(FactoryMbr());
    EXPECT_EQ(LetterOfPartitionTwo(application), "C");
}

TEST(GetDriveLetter, TwoLetters_ReturnsTheFirstInTheAlphabet) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->letters = "TF";
    facts.system.windowsDirectory = "F:\\Windows";
    Application application(facts);
    EXPECT_EQ(LetterOfPartitionTwo(application), "F");
}

TEST(GetDriveLetter, NoLetter_ReturnsNone) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.GetDriveLetter(0, 1), TEXT('0'));
    EXPECT_EQ(Transcript(application.pc.journal), noLetter);
}

TEST(GetDriveLetter, OtherDisk_ReturnsNone) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.GetDriveLetter(1, 2), TEXT('0'));
    EXPECT_EQ(Transcript(application.pc.journal), noLetter);
}

TEST(GetDriveLetter, RemovableDrive_ReturnsNone) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->driveType = machine::DriveType::Removable;
    Application application(facts);
    EXPECT_EQ(LetterOfPartitionTwo(application), "0");
}

TEST(GetDriveLetter, VolumeOnTwoExtents_ReturnsNone) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->furtherExtents = {{0, uint64_t{499} << 30, uint64_t{1} << 20}};
    Application application(facts);
    EXPECT_EQ(LetterOfPartitionTwo(application), "0");
}

TEST(GetDriveLetter, VolumeThatDoesNotOpen_ReturnsNone) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->openError = ERROR_ACCESS_DENIED;
    Application application(facts);
    EXPECT_EQ(LetterOfPartitionTwo(application), "0");
}

TEST(GetDriveLetter, VolumeWhoseControlFails_IsSkipped) {
    // The first control asks C: for its extents, the second for its partition.
    for (const uint32_t nth : {1U, 2U}) {
        Application application(FactoryMbr());
        application.pc.faults.Arm({.call = "DeviceIoControl", .nth = nth, .code = ERROR_NOT_READY});
        EXPECT_EQ(LetterOfPartitionTwo(application), "0");
        EXPECT_EQ(application.pc.faults.Fired(), 1);
    }
}

TEST(GetDriveLetter, NeverInitialised_ReturnsTheLetter) {
    EmulatedPc pc(FactoryMbr());
    Kestova kestova;
    EXPECT_EQ(kestova.GetDriveLetter(0, 3), TEXT('D'));
}

TEST(GetDriveLetter, FixedDrive_IsOpenedForReadingAndWriting) {
    EmulatedPc pc(FactoryMbr());
    Kestova kestova;
    EXPECT_EQ(kestova.GetDriveLetter(0, 2), TEXT('C'));
    const auto asked = pc.journal.Calls("GetDriveTypeW");
    ASSERT_EQ(asked.size(), 3U);
    EXPECT_THAT(asked[0].arguments, ElementsAre("A:"));
    const auto opened = pc.journal.Calls("CreateFileW");
    ASSERT_EQ(opened.size(), 1U);
    EXPECT_THAT(opened[0].arguments, ElementsAre("\\\\.\\C:", "0xc0000000", "0x00000003", "OPEN_EXISTING"));
}

TEST(GetDriveLetter, MissingPartition_TriesEveryLetterOfTheAlphabet) {
    EmulatedPc pc(FactoryMbr());
    Kestova kestova;
    EXPECT_EQ(kestova.GetDriveLetter(0, 9), TEXT('0'));
    const auto asked = pc.journal.Calls("GetDriveTypeW");
    ASSERT_EQ(asked.size(), 26U);
    EXPECT_THAT(asked.back().arguments, ElementsAre("Z:"));
}

// A private question about one letter, on a PC of its own.
struct Answer {
    int result;
    std::string records;
    std::vector<machine::CallRecord> calls;
};

template <typename Tag>
Answer Ask(Tag tag, const machine::Pc& facts, WCHAR letter,
           const std::vector<machine::FaultRule>& faults = {}) {
    EmulatedPc pc(facts);
    Kestova kestova;
    pc.journal.Clear();
    for (const machine::FaultRule& fault : faults)
        pc.faults.Arm(fault);
    const int result = (kestova.*Open(tag))(letter);
    EXPECT_EQ(pc.faults.Fired() > 0, !faults.empty());
    EXPECT_THAT(pc.ledger.Outstanding(), IsEmpty());
    EXPECT_THAT(pc.ledger.Violations(), IsEmpty());
    return {result, Transcript(pc.journal), pc.journal.Calls()};
}

constexpr internals::GetDiskNumberTag getDiskNumber;
constexpr internals::GetPartNumberTag getPartNumber;
constexpr const char* diskAsked = "4 {string Kestova::GetDiskNumber      cDriveLetter is D }\n";
constexpr const char* partAsked = "4 {string Kestova::GetPartNumber      cDriveLetter is D }\n";

machine::Pc OnSecondDisk() {
    machine::Pc facts = machine::WinPeTwoDisks();
    facts.disks[1].partitions[0].volume.emplace().letters = "S";
    return facts;
}

TEST(GetDiskNumber, LetteredVolume_ReturnsItsDisk) {
    const Answer answer = Ask(getDiskNumber, OnSecondDisk(), TEXT('S'));
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.records,
              "4 {string Kestova::GetDiskNumber      cDriveLetter is S }\n"
              "4 {string Kestova::GetPartNumber      iDiskNum is 1 }\n");
}

TEST(GetDiskNumber, LetteredVolume_IsOpenedForReadingAndAskedOnce) {
    const Answer answer = Ask(getDiskNumber, FactoryMbr(), TEXT('D'));
    EXPECT_EQ(answer.result, 0);
    ASSERT_EQ(answer.calls.size(), 3U);
    EXPECT_THAT(answer.calls[0].arguments,
                ElementsAre("\\\\.\\D:", "0x80000000", "0x00000003", "OPEN_EXISTING"));
    EXPECT_THAT(answer.calls[1].arguments, ElementsAre("\\\\.\\D:", "IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS"));
    EXPECT_EQ(answer.calls[2].call, "CloseHandle");
}

TEST(GetDiskNumber, MissingLetter_ReturnsUnknown) {
    const Answer answer = Ask(getDiskNumber, FactoryMbr(), TEXT('Q'));
    EXPECT_EQ(answer.result, 255);
    EXPECT_EQ(answer.records, "4 {string Kestova::GetDiskNumber      cDriveLetter is Q }\n");
}

TEST(GetDiskNumber, VolumeOnTwoExtents_ReturnsUnknown) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 3).volume->furtherExtents = {{0, uint64_t{499} << 30, uint64_t{1} << 20}};
    const Answer answer = Ask(getDiskNumber, facts, TEXT('D'));
    EXPECT_EQ(answer.result, 255);
    EXPECT_EQ(answer.records, diskAsked);
}

TEST(GetDiskNumber, FailingControl_ReturnsUnknown) {
    for (const char* const call : {"CreateFileW", "DeviceIoControl"}) {
        const Answer answer =
            Ask(getDiskNumber, FactoryMbr(), TEXT('D'), {{.call = call, .nth = 1, .code = ERROR_NOT_READY}});
        EXPECT_EQ(answer.result, 255) << call;
        EXPECT_EQ(answer.records, diskAsked) << call;
    }
}

TEST(GetPartNumber, LetteredVolume_ReturnsItsPartition) {
    const Answer answer = Ask(getPartNumber, FactoryMbr(), TEXT('D'));
    EXPECT_EQ(answer.result, 3);
    EXPECT_EQ(answer.records,
              std::string(partAsked) + "4 {string Kestova::GetPartNumber      iPartNum is 3 }\n");
    ASSERT_EQ(answer.calls.size(), 3U);
    EXPECT_THAT(answer.calls[0].arguments,
                ElementsAre("\\\\.\\D:", "0x80000000", "0x00000003", "OPEN_EXISTING"));
    EXPECT_THAT(answer.calls[1].arguments, ElementsAre("\\\\.\\D:", "IOCTL_DISK_GET_PARTITION_INFO_EX"));
    EXPECT_EQ(answer.calls[2].call, "CloseHandle");
}

TEST(GetPartNumber, MissingLetter_Returns0) {
    const Answer answer = Ask(getPartNumber, FactoryMbr(), TEXT('Q'));
    EXPECT_EQ(answer.result, 0);
    EXPECT_EQ(answer.records, "4 {string Kestova::GetPartNumber      cDriveLetter is Q }\n");
}

TEST(GetPartNumber, FailingControl_Returns0) {
    for (const char* const call : {"CreateFileW", "DeviceIoControl"}) {
        const Answer answer =
            Ask(getPartNumber, FactoryMbr(), TEXT('D'), {{.call = call, .nth = 1, .code = ERROR_NOT_READY}});
        EXPECT_EQ(answer.result, 0) << call;
        EXPECT_EQ(answer.records, partAsked) << call;
    }
}

}  // namespace
