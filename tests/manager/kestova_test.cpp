// The manager object's life.

#include "manager/kestova.h"

#include <gtest/gtest.h>

#include "machine/model/machines.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using machine::EmulatedPc;

TEST(Construction, WritesItsRecordsAndNothingElse) {
    EmulatedPc pc(machine::FactoryMbr());
    alignas(Kestova) char place[sizeof(Kestova)];
    Kestova* const kestova = new (place) Kestova;
    EXPECT_EQ(Transcript(pc.journal), "4 Kestova::Kestova\\tStart\n4 Kestova::Kestova\\tEnd\n");
    EXPECT_TRUE(pc.journal.Calls().empty());
    kestova->~Kestova();
}

TEST(Destruction, OfAnObjectThatWasNeverInitialisedReleasesWhatItOwns) {
    EmulatedPc pc(machine::FactoryMbr());
    { Kestova kestova; }
    EXPECT_EQ(Transcript(pc.journal),
              "4 Kestova::Kestova\\tStart\n"
              "4 Kestova::Kestova\\tEnd\n"
              "4 Kestova::~Kestova\\tStart\n"
              "4 Kestova::CleanMap\\tStart\n"
              "4 Kestova::CleanMap\\tEnd\n"
              "4 Kestova::~Kestova\\tEnd\n");
    EXPECT_TRUE(pc.ledger.Outstanding().empty());
}

TEST(Destruction, AfterInitialisationReleasesTheService) {
    EmulatedPc pc(machine::FactoryMbr());
    ComApartment com;
    {
        Kestova kestova;
        ASSERT_EQ(kestova.Initialize(false), 1);
        EXPECT_EQ(pc.ledger.Outstanding(),
                  (std::map<std::string, int>{{"COM initialization", 1}, {"IVdsService", 1}}));
    }
    EXPECT_EQ(pc.ledger.Outstanding(), (std::map<std::string, int>{{"COM initialization", 1}}));
    EXPECT_TRUE(pc.ledger.Violations().empty());
}

class InitializeArgument : public testing::TestWithParam<bool> {};

TEST_P(InitializeArgument, IsWithoutEffect) {
    EmulatedPc pc(machine::FactoryMbr());
    ComApartment com;
    Kestova kestova;
    pc.journal.Clear();
    EXPECT_EQ(kestova.Initialize(GetParam()), 1);
    EXPECT_EQ(Transcript(pc.journal),
              "4 Kestova::Initialize\\tStart\n4 Kestova::Initialize\\tEnd. bRet = {int 1}\n");
    EXPECT_EQ(pc.clockMilliseconds, 0U);
}

INSTANTIATE_TEST_SUITE_P(Both, InitializeArgument, testing::Bool());

TEST(Initialize, GivesUpAfterTwentyAttemptsASecondApart) {
    EmulatedPc pc(machine::FactoryMbr());
    ComApartment com;
    Kestova kestova;
    pc.faults.Arm({.call = "IVdsService::WaitForServiceReady", .code = 0x80042401});
    pc.journal.Clear();
    EXPECT_EQ(kestova.Initialize(false), 0);
    EXPECT_EQ(Transcript(pc.journal),
              "4 Kestova::Initialize\\tStart\n4 Kestova::Initialize\\tEnd. bRet = {int 0}\n");
    EXPECT_EQ(pc.journal.Calls("IVdsService::WaitForServiceReady").size(), 20U);
    EXPECT_EQ(pc.clockMilliseconds, 19000U);
    // The service of each failed attempt but the last is dropped; the last goes with the object.
    EXPECT_EQ(pc.ledger.Outstanding(),
              (std::map<std::string, int>{{"COM initialization", 1}, {"IVdsService", 20}}));
}

TEST(Initialize, WithoutAVolumeLayerAnswersZero) {
    EmulatedPc pc(machine::FactoryMbr());
    ComApartment com;
    Kestova kestova;
    const internals::WithoutVolumeLayer without(kestova);
    pc.journal.Clear();
    EXPECT_EQ(kestova.Initialize(false), 0);
    EXPECT_EQ(Transcript(pc.journal),
              "4 Kestova::Initialize\\tStart\n4 Kestova::Initialize\\tEnd. bRet = {int 0}\n");
}

TEST(Initialize, CalledAgainConnectsAgain) {
    Application application(machine::FactoryMbr());
    EXPECT_EQ(application.kestova.Initialize(true), 1);
    EXPECT_EQ(application.kestova.GetActivePartitionNumber(), 2);
}

TEST(Copy, SharesTheVolumeLayerAndWritesNothing) {
    Application application(machine::FactoryMbr());
    alignas(Kestova) char place[sizeof(Kestova)];
    // Never destroyed: its source frees what both share.
    Kestova* const copy = new (place) Kestova(application.kestova);
    EXPECT_EQ(Transcript(application.pc.journal), "");
    EXPECT_EQ(copy->*Open(internals::VolumeLayerTag()),
              application.kestova.*Open(internals::VolumeLayerTag()));
    EXPECT_EQ(copy->GetActivePartitionNumber(), 2);
}

TEST(Assignment, SharesTheVolumeLayerAndWritesNothing) {
    Application application(machine::FactoryMbr());
    Kestova target;
    alignas(Kestova) char place[sizeof(Kestova)];
    // Keeps what the target owned; never destroyed itself.
    Kestova* const owned = new (place) Kestova(target);
    application.pc.journal.Clear();
    EXPECT_EQ(&(target = application.kestova), &target);
    EXPECT_EQ(Transcript(application.pc.journal), "");
    EXPECT_EQ(target.*Open(internals::VolumeLayerTag()),
              application.kestova.*Open(internals::VolumeLayerTag()));
    // Each of the two frees what it made.
    target = *owned;
}

TEST(StringFormat, OfNothingIsEmpty) {
    EmulatedPc pc(machine::FactoryMbr());
    Kestova kestova;
    const auto format = Open(internals::StringFormatTag());
    EXPECT_TRUE((kestova.*format)(nullptr).empty());
    EXPECT_TRUE((kestova.*format)(TEXT("")).empty());
    EXPECT_TRUE((kestova.*format)(TEXT("%s"), TEXT("")).empty());
}

TEST(StringFormat, FormatsTextOfAnyLength) {
    EmulatedPc pc(machine::FactoryMbr());
    Kestova kestova;
    const auto format = Open(internals::StringFormatTag());
    const std::basic_string<WCHAR> text(5000, TEXT('x'));
    EXPECT_EQ((kestova.*format)(TEXT("%c is %d "), TEXT('C'), -7), TEXT("C is -7 "));
    EXPECT_EQ((kestova.*format)(TEXT("%s%d"), text.c_str(), 1), text + TEXT("1"));
}

}  // namespace
