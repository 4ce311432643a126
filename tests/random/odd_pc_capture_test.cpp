// Captures of PCs as the emulated ones are not, and real ones can be.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/com_apartment.h"
#include "machine/description/description.h"
#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"
#include "tools/kestova/capture/anonymous.h"
#include "tools/kestova/capture/captured_pc.h"
#include "tools/kestova/descriptions/description_text.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

CapturedPc CaptureOf(const machine::Pc& facts) {
    machine::EmulatedPc pc(facts);
    const ComApartment com;
    return CapturePc();
}

// Whether the description can be read again.
void ExpectReadable(const machine::Pc& captured) {
    for (const machine::Mistake& mistake : machine::FindMistakes(machine::WriteDescription(captured)))
        ADD_FAILURE() << mistake.place << ": " << mistake.what;
}

size_t CountOf(const machine::EmulatedPc& pc, const std::string& call, const std::string& argument) {
    size_t count = 0;
    for (const machine::CallRecord& record : pc.journal.Calls())
        count += record.call == call && record.arguments.front().find(argument) != std::string::npos;
    return count;
}

}  // namespace

TEST(OddPc, DriveOfATypeThatNobodyDefines_IsUnknown) {
    machine::Pc facts = machine::FactoryMbr();
    facts.faults = {{.call = "GetDriveTypeW", .code = 77}};
    const machine::Pc captured = CaptureOf(facts).pc;
    EXPECT_EQ(captured.disks[0].partitions[1].volume->driveType, machine::DriveType::Unknown);
    ExpectReadable(captured);
}

TEST(OddPc, DriverThatSaysTooLittleOrTooMuch_IsNoted) {
    for (const uint32_t size : {0u, 7u, 70000u}) {
        machine::Pc facts = machine::FactoryMbr();
        facts.disks[0].storageDescriptorSize = size;
        const CapturedPc captured = CaptureOf(facts);
        EXPECT_EQ(captured.pc.disks[0].storageDescriptorSize, std::nullopt);
        ExpectReadable(captured.pc);
        if (size > machine::mostDescriptorBytes)
            EXPECT_THAT(captured.notes, Contains("disk 0: its driver says that its descriptor has 70000 "
                                                 "bytes, which is not described"));
    }
}

// The second one has no name that the service tells, and would get that of the first.
TEST(OddPc, TwoPacksOfOneName_HaveNamesOfTheirOwn) {
    machine::Pc facts = machine::WinPeTwoDisks();
    facts.packs = {{.name = "pack 2"}};
    facts.disks[0].pack = "pack 2";
    facts.faults = {{.call = "IVdsPack::QueryDisks", .code = 0x8004242B, .argument = "pack of disk 1"}};
    const machine::Pc captured = CaptureOf(facts).pc;
    ASSERT_EQ(captured.packs.size(), 2u);
    EXPECT_EQ(captured.packs[1].name, "pack 2 again");
    ExpectReadable(captured);
}

TEST(OddPc, BitLockerVolumesWithoutALetter_AreSeveral) {
    machine::Pc facts = machine::WinPeMedia();
    facts.encryptableVolumes = {
        {{.deviceId = "one", .driveLetter = ""}, {.deviceId = "two", .driveLetter = ""}}};
    const machine::Pc captured = CaptureOf(facts).pc;
    EXPECT_EQ(captured.encryptableVolumes, facts.encryptableVolumes);
    ExpectReadable(captured);
}

// An optical drive and a slot for cards, both empty: only the slot is PhysicalDrive1.
TEST(OddPc, OpticalDriveWithoutAMedium_IsNotTakenForAnEmptySlot) {
    machine::Pc facts = machine::FactoryMbr();
    machine::Disk optical;
    optical.number = 2;
    optical.vdsName = "\\\\?\\CdRom0";
    optical.deviceType = 2;
    optical.style = machine::PartitionStyle::Unknown;
    machine::Disk slot = optical;
    slot.number = 1;
    slot.vdsName = "\\\\?\\PhysicalDrive1";
    slot.deviceType = 7;
    slot.busType = 7;
    facts.disks.push_back(optical);
    facts.disks.push_back(slot);
    const CapturedPc captured = CaptureOf(facts);
    ASSERT_EQ(captured.pc.disks.size(), 2u);
    EXPECT_EQ(captured.pc.disks[1].number, 1u);
    EXPECT_EQ(captured.pc.disks[1].vdsName, "\\\\?\\PhysicalDrive1");
    EXPECT_THAT(captured.notes,
                Contains("the disk \"\\\\?\\CdRom0\" of the service has no number, and is left out"));
}

TEST(OddPc, FileThatIsTooLong_IsCutAndNoted) {
    machine::Pc facts = machine::FactoryMbr();
    facts.disks[0].partitions[1].volume->files.PutFile("SystemVolume.ini", std::string(70000, 'x'));
    const CapturedPc captured = CaptureOf(facts);
    EXPECT_EQ(captured.pc.disks[0].partitions[1].volume->files.Find("SystemVolume.ini")->content.size(),
              65536u);
    EXPECT_THAT(captured.notes, Contains("C:\\SystemVolume.ini: only the first 64 KiB of it are described"));
}

// What no check of the capture foresees is said of its description.
TEST(OddPc, PartitionsOfOneNumber_AreMistakesOfTheDescription) {
    machine::Pc facts = machine::FactoryMbr();
    facts.disks[0].partitions[1].number = 1;
    EXPECT_THAT(MistakesIn(DescriptionText(CaptureOf(facts).pc)),
                Contains("disks[0].partitions[1].number: 1 is taken by disks[0].partitions[0].number"));
}

// Each question to a server that is gone can take half a minute.
TEST(OddPc, ShareThatIsGone_IsNotAskedForEachFile) {
    machine::Pc facts = machine::FactoryMbr();
    machine::Volume share;
    share.letters = "N";
    share.driveType = machine::DriveType::Remote;
    share.label = machine::Fact<std::string>::Fails(ERROR_BAD_NETPATH);
    facts.volumes.push_back(share);
    facts.faults = {{.call = "PathFileExistsW", .code = ERROR_BAD_NETPATH, .argument = "N:\\"}};
    machine::EmulatedPc pc(facts);
    const ComApartment com;
    CapturePc();
    EXPECT_LT(CountOf(pc, "PathFileExistsW", "N:\\"), 4u);
    EXPECT_GT(CountOf(pc, "PathFileExistsW", "C:\\"), 20u);
}

TEST(OddPc, ManyGuids_HaveAStandInEach) {
    machine::Pc facts = machine::FactoryGpt();
    machine::Disk& disk = facts.disks[0];
    disk.partitions.resize(1);
    for (uint32_t number = 2; number <= 300; ++number) {
        machine::Partition partition = disk.partitions[0];
        partition.volume.reset();
        partition.number = number;
        partition.gptId.Data2 = static_cast<uint16_t>(number);
        disk.partitions.push_back(partition);
    }
    MakeAnonymous(facts);
    std::set<std::string> standIns;
    for (const machine::Partition& partition : disk.partitions)
        standIns.insert(GuidText(partition.gptId));
    EXPECT_EQ(standIns.size(), 300u);
}

// The pack of dynamic disks has the computer's name, also where a call on it fails.
TEST(OddPc, PackThatFails_MadeAnonymous_HasAStandInToo) {
    machine::Pc facts = machine::WinPeTwoDisks();
    facts.packs = {{.name = "ADASPCDg0", .dynamic = true}};
    facts.disks[1].pack = "ADASPCDg0";
    facts.faults = {{.call = "IVdsPack::GetProperties",
                     .code = 0x00042715,
                     .withOutputs = true,
                     .argument = "pack ADASPCDg0"}};
    machine::Pc captured = CaptureOf(facts).pc;
    MakeAnonymous(captured);
    EXPECT_THAT(machine::WriteDescription(captured), Not(HasSubstr("ADASPC")));
    ASSERT_EQ(captured.faults.size(), 1u);
    EXPECT_EQ(captured.faults[0].argument, "pack " + captured.packs[0].name);
}

TEST(OddPc, VolumeThatFails_MadeAnonymous_HasAStandInToo) {
    machine::Pc facts = machine::WinPeMedia();
    const std::string path = "\\\\.\\root\\CIMV2:Win32_EncryptableVolume.DeviceID='";
    const std::string guid = "6f1f3a52-0000-0000-0000-000000000001";
    facts.faults = {{.call = "IWbemServices::ExecMethod",
                     .code = 0x80041001,
                     .argument = path + "\\\\?\\Volume{" + guid + "}\\'"}};
    MakeAnonymous(facts);
    EXPECT_THAT(*facts.faults[0].argument, AllOf(HasSubstr(path), Not(HasSubstr("6f1f3a52"))));
}

TEST(OddPc, LetterThatStandsForAText_MadeAnonymous_IsReadable) {
    machine::Pc facts = machine::FactoryMbr();
    facts.registry["HKLM\\SYSTEM\\MountedDevices"]["\\DosDevices\\Z:"] = {REG_SZ, "Ada's disk"};
    machine::Pc captured = CaptureOf(facts).pc;
    MakeAnonymous(captured);
    EXPECT_THAT(machine::WriteDescription(captured), AllOf(HasSubstr("device "), Not(HasSubstr("Ada"))));
    ExpectReadable(captured);
}
