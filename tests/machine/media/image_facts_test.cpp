// The facts of an image PC besides its disks: encrypted volumes, and the letters in its registry.
#include <gmock/gmock.h>

#include "machine/facts/volume_files.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

using testing::ElementsAre;
using testing::Key;

class ImageFactsTest : public ImageTest {
  protected:
    Pc PcOf(const std::string& name, SystemKind system = SystemKind::WindowsPe) {
        return PcOfImages({MadeImage(name)}, system, ImageAccess::Read);
    }
};

TEST_F(ImageFactsTest, BitLockerVolume_IsLockedAndListedAsEncrypted) {
    Pc pc = PcOf("bitlocker.img");

    const Volume& windows = *pc.disks[0].partitions[1].volume;
    EXPECT_EQ(windows.fileSystem, "BitLocker");
    EXPECT_EQ(windows.letters, "D");
    EXPECT_FALSE(windows.store);
    FileKind kind;
    EXPECT_EQ(VolumeFiles(pc).Find("D:\\Windows", kind), 0x80310000u);
    ASSERT_TRUE(pc.encryptableVolumes);
    ASSERT_EQ(pc.encryptableVolumes->size(), 3u);
    EXPECT_EQ((*pc.encryptableVolumes)[0],
              (EncryptableVolume{"\\\\?\\Volume{b17b17b1-0000-0000-0000-100000000000}\\", "", "C:", 0, 0}));
    EXPECT_EQ((*pc.encryptableVolumes)[1],
              (EncryptableVolume{"\\\\?\\Volume{b17b17b1-0000-0000-0000-900200000000}\\",
                                 "{b17b17b1-0000-0000-0000-900200000000}", "D:", 0, 6}));
    EXPECT_EQ((*pc.encryptableVolumes)[2].driveLetter, "E:");
    EXPECT_EQ((*pc.encryptableVolumes)[2].encryptionMethod, 0u);
}

TEST_F(ImageFactsTest, LockedVolumeWithoutLetter_IsListed) {
    const std::string image = MadeImage("bitlocker.img");
    OutputOf("sfdisk --quiet --part-type '" + image + "' 2 84");

    const Pc pc = PcOfImages({image}, SystemKind::WindowsPe, ImageAccess::Read);

    ASSERT_EQ(pc.encryptableVolumes->size(), 3u);
    EXPECT_EQ((*pc.encryptableVolumes)[1].driveLetter, std::nullopt);
    EXPECT_EQ((*pc.encryptableVolumes)[1].encryptionMethod, 6u);
}

TEST_F(ImageFactsTest, VolumeOfGptPartition_HasThePartitionsId) {
    const Pc pc = PcOf("factory-gpt.img", SystemKind::Windows);

    ASSERT_EQ(pc.encryptableVolumes->size(), 1u);
    EXPECT_EQ((*pc.encryptableVolumes)[0].deviceId, "\\\\?\\Volume{6f1f3a52-0000-4000-8000-000000000005}\\");
}

TEST_F(ImageFactsTest, MbrDisk_MountedDevicesHasItsLetters) {
    Pc pc = PcOf("installed-windows.img");

    auto& devices = pc.registry["HKLM\\SYSTEM\\MountedDevices"];
    EXPECT_THAT(devices,
                ElementsAre(Key("\\DosDevices\\C:"), Key("\\DosDevices\\D:"), Key("\\DosDevices\\E:")));
    EXPECT_EQ(devices["\\DosDevices\\D:"],
              (RegistryValue{REG_BINARY, std::string("\xD4\xC3\xB2\xA1\0\0\x90\x02\0\0\0\0", 12)}));
}

TEST_F(ImageFactsTest, GptDisk_MountedDevicesHasItsLetters) {
    Pc pc = PcOf("factory-gpt.img", SystemKind::Windows);

    auto& devices = pc.registry["HKLM\\SYSTEM\\MountedDevices"];
    EXPECT_THAT(devices, ElementsAre(Key("\\DosDevices\\C:")));
    EXPECT_EQ(devices["\\DosDevices\\C:"].data,
              std::string("DMIO:ID:\x52\x3A\x1F\x6F\0\0\0\x40\x80\0\0\0\0\0\0\x05", 24));
}

TEST_F(ImageFactsTest, GptWithoutEfiSystem_HasWindowsAsPartition3) {
    const Pc pc = PcOf("gpt-without-efi.img", SystemKind::Windows);

    ASSERT_EQ(pc.disks[0].partitions.size(), 4u);
    EXPECT_EQ(pc.disks[0].partitions[2].volume->letters, "C");
    EXPECT_EQ(pc.disks[0].partitions[2].volume->label.value, "Windows");
}

TEST_F(ImageFactsTest, ImageWithHive_HasAReader) {
    Pc pc = PcOf("installed-windows.img");
    std::string file;
    RegistryKeys keys;

    ASSERT_EQ(VolumeFiles(pc).Read("D:\\Windows\\System32\\Config\\SYSTEM", file), 0u);
    EXPECT_EQ(pc.hiveReader->Read({file}, keys), 0u);

    EXPECT_TRUE(keys.contains("MountedDevices"));
}

}  // namespace
}  // namespace machine
