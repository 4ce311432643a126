// Volumes by their names.

#include <gmock/gmock.h>

#include "base/utf.h"
#include "machine/facts/machines.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using machine::EmulatedPc;
using machine::FactoryMbr;

machine::Pc WithLabels(machine::Fact<std::string> ofC, machine::Fact<std::string> ofD) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->label = std::move(ofC);
    PartitionOf(facts, 3).volume->label = std::move(ofD);
    return facts;
}

// The name of D: in a buffer that had another, and the result.
struct Name {
    int result;
    std::string text;
    bool operator==(const Name&) const = default;
};

Name NameOfD(const machine::Pc& facts) {
    EmulatedPc pc(facts);
    Kestova kestova;
    pc.journal.Clear();
    WCHAR name[MAX_PATH + 1] = {};
    name[0] = TEXT('?');
    name[MAX_PATH] = TEXT('!');
    const int result = (kestova.*Open(internals::GetVolumeNameTag()))(TEXT('D'), name);
    EXPECT_EQ(name[MAX_PATH], TEXT('!'));
    EXPECT_EQ(Transcript(pc.journal), "");
    const auto calls = pc.journal.Calls();
    EXPECT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls.at(0).arguments, testing::ElementsAre("D:\\"));
    return {result, ToUtf8(name)};
}

TEST(GetVolumeName, LabelledVolume_ReturnsTheLabel) {
    EXPECT_EQ(NameOfD(FactoryMbr()), (Name{1, "Data"}));
    EXPECT_EQ(NameOfD(WithLabels(std::string(), std::string())), (Name{1, ""}));
}

TEST(GetVolumeName, UnreadableVolume_FailsAndWritesNothing) {
    EXPECT_EQ(NameOfD(WithLabels(std::string(), machine::Fact<std::string>::Fails(ERROR_NOT_READY))),
              (Name{0, "?"}));
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 3).volume->fileSystem = "RAW";
    EXPECT_EQ(NameOfD(facts), (Name{0, "?"}));
}

TEST(GetVolumeName, LongLabel_IsCutToTheBufferOfTheCaller) {
    const Name cut{1, std::string(MAX_PATH - 1, 'L')};
    EXPECT_EQ(NameOfD(WithLabels(std::string(), std::string(300, 'L'))), cut);
    EXPECT_EQ(NameOfD(WithLabels(std::string(), std::string(1023, 'L'))), cut);
    EXPECT_EQ(NameOfD(WithLabels(std::string(), std::string(1024, 'L'))), (Name{0, "?"}));
}

TEST(GetVolumeName, AnyVolume_ReadsTheNameOfTheFileSystemToo) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 3).volume->fileSystem = std::string(1023, 'F');
    EXPECT_EQ(NameOfD(facts), (Name{1, "Data"}));
    PartitionOf(facts, 3).volume->fileSystem = std::string(1024, 'F');
    EXPECT_EQ(NameOfD(facts), (Name{0, "?"}));
}

char FactoryLetter(const machine::Pc& facts) {
    EmulatedPc pc(facts);
    Kestova kestova;
    pc.journal.Clear();
    WCHAR letter = TEXT('?');
    EXPECT_EQ(kestova.GetFactoryPrtDriveLetter(letter), 1);
    const char found = static_cast<char>(letter);
    EXPECT_EQ(Transcript(pc.journal),
              std::string("4 Kestova::GetFactoryPrtDriveLetter\\tStart. \n"
                          "4 Kestova::GetFactoryPrtDriveLetter\\tEnd. cDriveLetter = {char ") +
                  found + "} bResult = {int 1}\n");
    EXPECT_TRUE(pc.ledger.Outstanding().empty());
    return found;
}

TEST(GetFactoryPrtDriveLetter, TwoVolumesOfThatNameInAnyCase_ReturnsTheFirst) {
    const std::string windows = "Windows";
    EXPECT_EQ(FactoryLetter(WithLabels(windows, std::string("Factory"))), 'D');
    EXPECT_EQ(FactoryLetter(WithLabels(windows, std::string("FACTORY"))), 'D');
    EXPECT_EQ(FactoryLetter(WithLabels(std::string("factory"), std::string("Factory"))), 'C');
}

TEST(GetFactoryPrtDriveLetter, RemovableDrive_ReturnsItsLetter) {
    machine::Pc facts = WithLabels(std::string(), std::string("Factory"));
    PartitionOf(facts, 3).volume->driveType = machine::DriveType::Removable;
    EXPECT_EQ(FactoryLetter(facts), 'D');
}

TEST(GetFactoryPrtDriveLetter, UnreadableName_IsPassedOver) {
    EXPECT_EQ(
        FactoryLetter(WithLabels(machine::Fact<std::string>::Fails(ERROR_NOT_READY), std::string("Factory"))),
        'D');
}

TEST(GetFactoryPrtDriveLetter, NoSuchVolume_ReturnsNone) {
    EXPECT_EQ(FactoryLetter(FactoryMbr()), '0');
    EXPECT_EQ(FactoryLetter(WithLabels(std::string("Factory 2"), std::string())), '0');
}

}  // namespace
