// Where the EFI system partition and the installed Windows are.

#include <gtest/gtest.h>

#include <optional>

#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using machine::FactoryGpt;
using machine::FactoryMbr;
using machine::FaultRule;

struct Place {
    DWORD code = 77;
    int disk = 77;
    int partition = 77;
    WCHAR letter = TEXT('?');
    bool operator==(const Place&) const = default;
};

void PrintTo(const Place& place, std::ostream* out) {
    *out << "code " << place.code << " disk " << place.disk << " partition " << place.partition << " letter "
         << static_cast<int>(place.letter);
}

constexpr Place Nowhere(DWORD code) {
    return {code, -1, -1, TEXT('0')};
}

using Question = DWORD (Kestova::*)(int&, int&, WCHAR&);
constexpr Question bootFiles = &Kestova::GetBitLockerSystemInfo;
constexpr Question windows = &Kestova::GetVistaOSInfo;

Place Ask(Application& application, Question question) {
    Place place;
    place.code = (application.kestova.*question)(place.disk, place.partition, place.letter);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
    return place;
}

machine::Pc OfUnknownStyle() {
    machine::Pc facts = FactoryMbr();
    facts.disks[0].style = machine::PartitionStyle::Unknown;
    return facts;
}

machine::Pc WithoutEfiSystemPartition() {
    machine::Pc facts = FactoryGpt();
    PartitionOf(facts, 3).gptType = PARTITION_BASIC_DATA_GUID;
    return facts;
}

machine::Pc WithTwoPartitions() {
    machine::Pc facts = FactoryGpt();
    facts.disks[0].partitions.resize(2);
    facts.disks[0].partitions.back().volume->letters = "C";
    return facts;
}

machine::Pc WithoutWindowsFiles() {
    machine::Pc facts = FactoryGpt();
    PartitionOf(facts, 5).volume->files = {};
    return facts;
}

machine::Pc WithoutWindowsLetter() {
    machine::Pc facts = FactoryGpt();
    PartitionOf(facts, 5).volume->letters = "";
    PartitionOf(facts, 6).volume->letters = "R";
    facts.system.windowsDirectory = "R:\\Windows";
    return facts;
}

machine::Pc OnDisk1() {
    machine::Pc facts = FactoryGpt();
    facts.disks[0].number = 1;
    facts.disks[0].vdsName = "\\\\?\\PhysicalDrive1";
    return facts;
}

machine::Pc WithoutInternalDisk() {
    machine::Pc facts = FactoryGpt();
    facts.disks[0].busType = 17;
    return facts;
}

const FaultRule styleUnreadable = {.call = "IVdsService::GetObject", .nth = 1, .code = 0x80042405};
const FaultRule typeUnreadable = {.call = "IVdsAdvancedDisk::QueryPartitions", .nth = 2, .code = 0x8004242B};

struct Story {
    const char* name;
    Question question;
    machine::Pc facts;
    std::vector<FaultRule> faults;
    Place place;
};

void PrintTo(const Story& story, std::ostream* out) {
    *out << story.name;
}

const Story stories[] = {
    {"boot_files_gpt", bootFiles, FactoryGpt(), {}, {0, 0, 3, TEXT('0')}},
    {"boot_files_on_disk_1", bootFiles, OnDisk1(), {}, {0, 1, 3, TEXT('0')}},
    {"boot_files_gpt_other", bootFiles, WithoutEfiSystemPartition(), {}, Nowhere(0)},
    {"boot_files_mbr", bootFiles, FactoryMbr(), {}, Nowhere(0)},
    {"boot_files_no_internal_disk", bootFiles, WithoutInternalDisk(), {}, Nowhere(100)},
    {"boot_files_unknown_style", bootFiles, OfUnknownStyle(), {}, Nowhere(106)},
    // A style that cannot be read is an unknown one.
    {"boot_files_no_style", bootFiles, FactoryMbr(), {styleUnreadable}, Nowhere(106)},
    {"boot_files_two_partitions", bootFiles, WithTwoPartitions(), {}, Nowhere(115)},
    {"boot_files_no_type", bootFiles, FactoryGpt(), {typeUnreadable}, Nowhere(115)},

    {"windows_gpt", windows, FactoryGpt(), {}, {0, 0, 5, TEXT('C')}},
    {"windows_on_disk_1", windows, OnDisk1(), {}, {0, 1, 5, TEXT('C')}},
    {"windows_no_letter", windows, WithoutWindowsLetter(), {}, Nowhere(104)},
    {"windows_no_files", windows, WithoutWindowsFiles(), {}, Nowhere(110)},
    // Without an EFI system partition the letter is looked up on disk -1.
    {"windows_gpt_other", windows, WithoutEfiSystemPartition(), {}, Nowhere(104)},
    {"windows_mbr", windows, FactoryMbr(), {}, Nowhere(104)},
    {"windows_unknown_style", windows, OfUnknownStyle(), {}, Nowhere(111)},
    {"windows_no_internal_disk", windows, WithoutInternalDisk(), {}, Nowhere(111)},
    // The code of the other query gives way to the letter's.
    {"windows_two_partitions", windows, WithTwoPartitions(), {}, Nowhere(104)},
};

class SystemLocation : public testing::TestWithParam<Story> {};

TEST_P(SystemLocation, EveryQuery_ReturnsItAndChangesNothing) {
    const Story& story = GetParam();
    Application application(story.facts);
    for (const FaultRule& fault : story.faults)
        application.pc.faults.Arm(fault);
    EXPECT_EQ(Ask(application, story.question), story.place);
    EXPECT_EQ(application.pc.faults.Fired() > 0, !story.faults.empty());
    EXPECT_EQ(application.pc.facts, story.facts);
    ExpectTranscript(application.pc.journal);
}

INSTANTIATE_TEST_SUITE_P(Every, SystemLocation, testing::ValuesIn(stories),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(SystemLocation, NoVolumeLayer_ReturnsUnknown) {
    Application application(FactoryGpt());
    const internals::WithoutVolumeLayer without(application.kestova);
    application.pc.journal.Clear();
    EXPECT_EQ(Ask(application, bootFiles), Nowhere(100));
    EXPECT_EQ(Ask(application, windows), Nowhere(111));
    EXPECT_EQ(Transcript(application.pc.journal),
              "4 Kestova::GetBitLockerSystemInfo\\tStart\n"
              "4 Kestova::GetFirstInternalDriveNumber\\tStart\n"
              "4 Kestova::GetFirstInternalDriveNumber\\tEnd. DriveNumber = {int -1}\n"
              "1 Kestova::GetBitLockerSystemInfo\\tGetFirstInternalDriveNumber error\n"
              "4 Kestova::GetVistaOSInfo\\tStart\n"
              "4 Kestova::GetDiskStyle\\t\\tStart\n"
              "4 Kestova::GetDiskStyle\\t\\tEnd. enumDiskStyle = {int 0}\n"
              "1 Kestova::GetVistaOSInfo\\tGetDiskStyle\\tERROR_GET_DISK_STYLE\n"
              "4 {string Kestova::GetVistaOSInfo DiskNumber: -1  PartitionNumber: -1  cDriveLetter: 0}\n");
}

// Takes the volume layer from an object when it writes a record.
class LayerTaker final : public ILogSink {
  public:
    LayerTaker(Kestova& kestova, const WCHAR* text) : kestova_(kestova), text_(text) {
        CLoggingFactory::GetInstance().AddSink(*this);
    }
    ~LayerTaker() { CLoggingFactory::GetInstance().RemoveSink(*this); }

    void Write(const LogEntry& entry) override {
        if (entry.Text() == text_) without_.emplace(kestova_);
    }

  private:
    Kestova& kestova_;
    std::basic_string<WCHAR> text_;
    std::optional<internals::WithoutVolumeLayer> without_;
};

// The object's own checks between its steps, each of which has a code of its own.
TEST(SystemLocation, VolumeLayerThatIsGoneHalfWay_ReturnsTheCodeOfTheStep) {
    const struct {
        const WCHAR* text;
        DWORD code;
        const char* record;
    } steps[] = {
        {TEXT("Kestova::GetFirstInternalDriveNumber\tEnd. DriveNumber = 0"), 116,
         "1 Kestova::GetBitLockerSystemInfo\\tNULL == m_pVDSPartition\n"},
        {TEXT("Kestova::GetDiskStyle\t\tStart"), 111,
         "1 Kestova::GetBitLockerSystemInfo\\tGetDiskStyle ERROR_GET_DISK_STYLE\n"},
    };
    for (const auto& step : steps) {
        Application application(FactoryGpt());
        const LayerTaker taker(application.kestova, step.text);
        EXPECT_EQ(Ask(application, bootFiles), Nowhere(step.code));
        EXPECT_TRUE(Transcript(application.pc.journal).ends_with(step.record));
    }
}

// The first internal disk in Windows PE is the MBR disk 0 while the style is read, and the GPT disk 1 from
// then on: the lists of disks after the third lack disk 0.
TEST(SystemLocation, DiskThatIsGoneHalfWay_ReturnsNowhereWithTheCodeOfTheOther) {
    machine::Pc facts = FactoryGpt();
    facts.disks[0].number = 1;
    facts.disks[0].vdsName = "\\\\?\\PhysicalDrive1";
    facts.disks.push_back(FactoryMbr().disks[0]);
    facts.system.startOptions = " MININT";
    Application application(facts);
    constexpr uint32_t listsBefore = 3;
    constexpr uint32_t listsAtMost = 12;
    for (uint32_t list = listsBefore + 1; list <= listsAtMost; ++list)
        application.pc.faults.Arm({.call = "IVdsDisk::GetProperties", .nth = 2 * list, .code = 0x80042405});
    EXPECT_EQ(Ask(application, windows), Nowhere(0));
    EXPECT_NE(Transcript(application.pc.journal)
                  .find("1 Kestova::GetVistaOSInfo   MBR Does not get os partition number\n"),
              std::string::npos);
}

}  // namespace
