#include "machine/facts/machines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "machine/facts/letters.h"
#include "platform/partition_types.h"

namespace {

using namespace machine;
using testing::ElementsAre;

TEST(NamedMachines, EveryName_Make_BuildsThePcOfThatName) {
    std::vector<std::string> names;
    for (const NamedMachine& machine : NamedMachines()) {
        names.push_back(machine.make().name);
        EXPECT_EQ(names.back(), machine.name);
        EXPECT_FALSE(machine.summary.empty());
    }
    EXPECT_THAT(names, ElementsAre("factory-mbr", "factory-gpt", "winpe-two-disks", "winpe-media"));
}

TEST(NamedMachines, EveryName_Make_PartitionsDoNotOverlapOrExceedTheDisk) {
    for (const NamedMachine& machine : NamedMachines()) {
        for (const Disk& disk : machine.make().disks) {
            uint64_t end = 0;
            for (const Partition& partition : disk.partitions) {
                EXPECT_GE(partition.offset, end) << machine.name << " partition " << partition.number;
                end = partition.offset + partition.size;
            }
            EXPECT_LE(end, disk.size) << machine.name;
        }
    }
}

TEST(FactoryMbr, Make_ActivatesWindowsAndHidesTheRecoveryPartition) {
    const Pc pc = FactoryMbr();
    const std::vector<Partition>& partitions = pc.disks.at(0).partitions;
    ASSERT_EQ(partitions.size(), 4u);
    EXPECT_EQ(pc.firmware.kind, FirmwareKind::Bios);
    EXPECT_EQ(pc.system.kind, SystemKind::Windows);
    EXPECT_EQ(partitions[0].mbrType, MBR_ID_HIDDEN_RECOVERY);
    EXPECT_EQ(partitions[0].bootIndicator, 0);
    EXPECT_NE(partitions[0].volume->files.Find("sources/Qelhdrcv.ini"), nullptr);
    EXPECT_EQ(partitions[1].bootIndicator, 1);
    EXPECT_EQ(partitions[3].mbrType, MBR_ID_BIOS_HIBERNATION);
    EXPECT_EQ(UsedLetters(pc), "CD");
}

TEST(FactoryGpt, Make_CreatesTheSixFactoryPartitions) {
    const Pc pc = FactoryGpt();
    EXPECT_EQ(pc.firmware.kind, FirmwareKind::Uefi);
    EXPECT_EQ(pc.disks.at(0).style, PartitionStyle::Gpt);
    const GUID types[] = {ORVOBOOT_GUID,
                          PARTITION_MSFT_RECOVERY_GUID,
                          PARTITION_SYSTEM_GUID,
                          PARTITION_MSFT_RESERVED_GUID,
                          PARTITION_BASIC_DATA_GUID,
                          PARTITION_MSFT_RECOVERY_GUID};
    ASSERT_EQ(pc.disks[0].partitions.size(), 6u);
    for (size_t index = 0; index < 6; ++index)
        EXPECT_TRUE(pc.disks[0].partitions[index].gptType == Guid(types[index])) << index;
    EXPECT_EQ(UsedLetters(pc), "C");
}

TEST(WinPeTwoDisks, Make_BootsFromTheRecoveryPartitionAndPrefersDisk0) {
    const Pc pc = WinPeTwoDisks();
    EXPECT_EQ(pc.system.kind, SystemKind::WindowsPe);
    EXPECT_EQ(pc.system.windowsDirectory, "X:\\Windows");
    ASSERT_EQ(pc.disks.size(), 2u);
    EXPECT_EQ(pc.disks[0].partitions[0].bootIndicator, 1);
    EXPECT_EQ(pc.disks[0].partitions[1].bootIndicator, 0);
    EXPECT_EQ(pc.disks[1].partitions[0].mbrType, MBR_ID_CACHE);
    EXPECT_EQ(UsedLetters(pc), "CDEX");
    const FileTree::Entry* const ini = pc.host.files.Find("IDE.INI");
    ASSERT_NE(ini, nullptr);
    EXPECT_NE(ini->content.find(pc.disks[0].controllers.at(0)), std::string::npos);
    EXPECT_EQ(ini->content.find(pc.disks[1].controllers.at(0)), std::string::npos);
}

TEST(WinPeMedia, Make_HasMediaALockedVolumeAndRecordedLetters) {
    const Pc pc = WinPeMedia();
    EXPECT_EQ(UsedLetters(pc), "CDRUX");
    const std::vector<Partition>& partitions = pc.disks.at(0).partitions;
    ASSERT_EQ(partitions.size(), 7u);
    EXPECT_NE(partitions[4].volume->files.Find("Windows/System32/Winload.exe"), nullptr);
    EXPECT_FALSE(partitions[5].volume->label.value) << "locked";
    EXPECT_NE(partitions[6].volume->files.Find("sources/Qelhdrcv.ini"), nullptr);
    EXPECT_NE(pc.volumes.at(1).files.Find("sources/DVD"), nullptr);
    EXPECT_NE(pc.volumes.at(2).files.Find("sources/UFD"), nullptr);
    const auto& running = pc.registry.at("HKLM\\SYSTEM\\MountedDevices");
    const auto& installed = pc.offlineSystemHive.at("MountedDevices");
    EXPECT_TRUE(running.at("\\DosDevices\\D:") == installed.at("\\DosDevices\\E:"));
    EXPECT_EQ(installed.at("\\DosDevices\\F:").data.size(), 24u);
    EXPECT_EQ(pc.encryptableVolumes.value().at(1).driveLetter, "D:");
}

}  // namespace
