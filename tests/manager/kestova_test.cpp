// The manager object's life.

#include "manager/kestova.h"

#include <gtest/gtest.h>

#include <typeinfo>

#include "machine/facts/machines.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using machine::EmulatedPc;

TEST(Construction, FactoryPc_WritesItsRecordsAndNothingElse) {
    EmulatedPc pc(machine::FactoryMbr());
    alignas(Kestova) char place[sizeof(Kestova)];
    Kestova* const kestova = new (place) Kestova;
    EXPECT_EQ(Transcript(pc.journal), "4 Kestova::Kestova\\tStart\n4 Kestova::Kestova\\tEnd\n");
    EXPECT_TRUE(pc.journal.Calls().empty());
    kestova->~Kestova();
}

TEST(Destruction, NeverInitialised_ReleasesWhatItOwns) {
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

TEST(Destruction, Initialised_ReleasesTheService) {
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

// What is on loan at the moment when the object begins to clean its maps.
class LoansAtCleaning : public ILogSink {
  public:
    explicit LoansAtCleaning(const machine::Ledger& ledger) : ledger_(ledger) {
        CLoggingFactory::GetInstance().AddSink(*this);
    }
    ~LoansAtCleaning() { CLoggingFactory::GetInstance().RemoveSink(*this); }
    std::map<std::string, int> loans;

  private:
    void Write(const LogEntry& entry) override {
        if (entry.Text() == TEXT("Kestova::CleanMap\tStart")) loans = ledger_.Outstanding();
    }
    const machine::Ledger& ledger_;
};

TEST(Destruction, Initialised_ReleasesTheServiceBeforeItCleansItsMaps) {
    EmulatedPc pc(machine::FactoryMbr());
    ComApartment com;
    LoansAtCleaning cleaning(pc.ledger);
    {
        Kestova kestova;
        ASSERT_EQ(kestova.Initialize(false), 1);
    }
    EXPECT_EQ(cleaning.loans, (std::map<std::string, int>{{"COM initialization", 1}}));
}

class InitializeArgument : public testing::TestWithParam<bool> {};

TEST_P(InitializeArgument, EitherValue_HasNoEffect) {
    EmulatedPc pc(machine::FactoryMbr());
    ComApartment com;
    Kestova kestova;
    pc.journal.Clear();
    EXPECT_EQ(kestova.Initialize(GetParam()), 1);
    EXPECT_EQ(Transcript(pc.journal),
              "4 Kestova::Initialize\\tStart\n4 Kestova::Initialize\\tEnd. bRet = {int 1}\n");
    EXPECT_EQ(pc.clockMilliseconds, 0U);
}

INSTANTIATE_TEST_SUITE_P(Both, InitializeArgument, testing::Bool(),
                         [](const auto& argument) { return argument.param ? "True" : "False"; });

TEST(Initialize, ServiceNeverReady_FailsAfterTwentyAttemptsASecondApart) {
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

TEST(Initialize, NoVolumeLayer_Returns0) {
    EmulatedPc pc(machine::FactoryMbr());
    ComApartment com;
    Kestova kestova;
    const internals::WithoutVolumeLayer without(kestova);
    pc.journal.Clear();
    EXPECT_EQ(kestova.Initialize(false), 0);
    EXPECT_EQ(Transcript(pc.journal),
              "4 Kestova::Initialize\\tStart\n4 Kestova::Initialize\\tEnd. bRet = {int 0}\n");
}

TEST(Initialize, SecondCall_ConnectsAgain) {
    Application application(machine::FactoryMbr());
    EXPECT_EQ(application.kestova.Initialize(true), 1);
    EXPECT_EQ(application.kestova.GetActivePartitionNumber(), 2);
}

// The pointers differ from object to object; what else is no map gets a value that no new object has.
void FillMembers(Kestova& kestova) {
    kestova.*Open(internals::DiskStyleTag()) = HARD_DISK_GPT;
    kestova.*Open(internals::ReservedTag()) = TEXT('R');
    kestova.*Open(internals::WinRELetterTag()) = TEXT('W');
    kestova.*Open(internals::RecoveryLetterTag()) = TEXT('V');
    kestova.*Open(internals::WinRENumberTag()) = 4;
    kestova.*Open(internals::RecoveryNumberTag()) = 7;
}

template <typename... Tags>
void ExpectSame(Kestova& left, Kestova& right) {
    ([&] { EXPECT_EQ(left.*Open(Tags()), right.*Open(Tags())) << typeid(Tags).name(); }(), ...);
}

// All but the maps.
void ExpectSameMembers(Kestova& left, Kestova& right) {
    using namespace internals;
    ExpectSame<DiskStyleTag, ReservedTag, EncryptionLayerTag, VolumeLayerTag, FirstReservedTag,
               SecondReservedTag, WinRELetterTag, RecoveryLetterTag, WinRENumberTag, RecoveryNumberTag>(
        left, right);
}

TEST(Copy, InitialisedObject_SharesEveryMemberAndWritesNothing) {
    Application application(machine::FactoryMbr());
    FillMembers(application.kestova);
    alignas(Kestova) char place[sizeof(Kestova)];
    // Never destroyed: its source frees what both share.
    Kestova* const copy = new (place) Kestova(application.kestova);
    EXPECT_EQ(Transcript(application.pc.journal), "");
    ExpectSameMembers(*copy, application.kestova);
    EXPECT_EQ(copy->GetActivePartitionNumber(), 2);
}

// One letter in each map, of the installed Windows and of the running system.
void FillMaps(Kestova& kestova) {
    (kestova.*Open(internals::WinDriveMapTag()))[TEXT('C')] = {new BYTE[2]{1, 2}, 2};
    (kestova.*Open(internals::PEDriveMapTag()))[TEXT('D')] = {new BYTE[1]{3}, 1};
}

void ForgetMaps(Kestova& kestova) {
    (kestova.*Open(internals::WinDriveMapTag())).clear();
    (kestova.*Open(internals::PEDriveMapTag())).clear();
}

// Both have the same letters in their maps, with the same buffers behind them.
void ExpectSharedMaps(Kestova& left, Kestova& right) {
    for (const auto map : {Open(internals::WinDriveMapTag()), Open(internals::PEDriveMapTag())}) {
        ASSERT_EQ((left.*map).size(), 1U);
        ASSERT_EQ((right.*map).size(), 1U);
        EXPECT_EQ((left.*map).begin()->first, (right.*map).begin()->first);
        EXPECT_EQ((left.*map).begin()->second.pData, (right.*map).begin()->second.pData);
        EXPECT_EQ((left.*map).begin()->second.dwLength, (right.*map).begin()->second.dwLength);
    }
}

// The partitions that the source lettered are the copy's to take the letters from.
TEST(Copy, SourceThatAssignedALetter_RemembersThePartition) {
    Application application(machine::FactoryGpt());
    WCHAR letter = 0;
    application.kestova.AssignRecoveryPartition(letter);
    application.kestova.AssignWinREPartition(letter);
    THardDiskType style = HARD_DISK_UNKNOWN;
    application.kestova.GetDiskStyle(style);
    alignas(Kestova) char place[sizeof(Kestova)];
    Kestova* const copy = new (place) Kestova(application.kestova);
    EXPECT_EQ(copy->*Open(internals::DiskStyleTag()), HARD_DISK_GPT);
    copy->RemoveRecoveryPartition();
    copy->RemoveWinREPartition();
    EXPECT_EQ(application.pc.facts, machine::FactoryGpt());
}

// The source still points to what the copy freed.
TEST(Copy, FilledMaps_SharesTheirBuffers) {
    EmulatedPc pc(machine::FactoryMbr());
    Kestova source;
    FillMaps(source);
    alignas(Kestova) char place[sizeof(Kestova)];
    Kestova* const copy = new (place) Kestova(source);
    ExpectSharedMaps(*copy, source);
    (copy->*Open(internals::CleanMapTag()))();
    EXPECT_TRUE((copy->*Open(internals::WinDriveMapTag())).empty());
    EXPECT_EQ((source.*Open(internals::WinDriveMapTag())).size(), 1U);
    ForgetMaps(source);
}

TEST(Assignment, FilledObject_TakesOverTheMapsAndWhatIsRemembered) {
    Application application(machine::FactoryGpt());
    WCHAR letter = 0;
    application.kestova.AssignRecoveryPartition(letter);
    application.kestova.AssignWinREPartition(letter);
    THardDiskType style = HARD_DISK_UNKNOWN;
    application.kestova.GetDiskStyle(style);
    FillMaps(application.kestova);
    Kestova target;
    alignas(Kestova) char place[sizeof(Kestova)];
    Kestova* const owned = new (place) Kestova(target);
    target = application.kestova;
    EXPECT_EQ(target.*Open(internals::DiskStyleTag()), HARD_DISK_GPT);
    ExpectSharedMaps(target, application.kestova);
    target.RemoveRecoveryPartition();
    target.RemoveWinREPartition();
    EXPECT_EQ(application.pc.facts, machine::FactoryGpt());
    target = *owned;
}

TEST(Assignment, ToItself_KeepsTheMaps) {
    EmulatedPc pc(machine::FactoryMbr());
    Kestova kestova;
    FillMaps(kestova);
    const Kestova& itself = kestova;
    kestova = itself;
    ExpectSharedMaps(kestova, kestova);
    EXPECT_EQ((kestova.*Open(internals::PEDriveMapTag())).at(TEXT('D')).pData[0], 3);
}

TEST(Assignment, InitialisedObject_SharesEveryMemberAndWritesNothing) {
    Application application(machine::FactoryMbr());
    FillMembers(application.kestova);
    Kestova target;
    alignas(Kestova) char place[sizeof(Kestova)];
    // Keeps what the target owned; never destroyed itself.
    Kestova* const owned = new (place) Kestova(target);
    application.pc.journal.Clear();
    EXPECT_EQ(&(target = application.kestova), &target);
    EXPECT_EQ(Transcript(application.pc.journal), "");
    ExpectSameMembers(target, application.kestova);
    // Each of the two frees what it made.
    target = *owned;
}

TEST(StringFormat, NoFormat_ReturnsEmptyText) {
    EmulatedPc pc(machine::FactoryMbr());
    Kestova kestova;
    const auto format = Open(internals::StringFormatTag());
    EXPECT_TRUE((kestova.*format)(nullptr).empty());
    EXPECT_TRUE((kestova.*format)(TEXT("")).empty());
    EXPECT_TRUE((kestova.*format)(TEXT("%s"), TEXT("")).empty());
}

TEST(StringFormat, LongText_IsFormattedWhole) {
    EmulatedPc pc(machine::FactoryMbr());
    Kestova kestova;
    const auto format = Open(internals::StringFormatTag());
    const std::basic_string<WCHAR> text(5000, TEXT('x'));
    EXPECT_EQ((kestova.*format)(TEXT("%c is %d "), TEXT('C'), -7), TEXT("C is -7 "));
    EXPECT_EQ((kestova.*format)(TEXT("%s%d"), text.c_str(), 1), text + TEXT("1"));
}

}  // namespace
