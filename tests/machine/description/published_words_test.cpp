// The words of a description that stand for numbers of the platform, each against the published number.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "machine/description/description.h"
#include "platform/vds.h"

namespace {

using machine::Pc;

struct Word {
    const char* word;
    uint32_t number;
};

// A description up to the word and after it, and where the number is in the PC.
struct Place {
    const char* before;
    const char* after;
    std::function<uint32_t(const Pc&)> number;
};

void ExpectNumbers(const Place& place, const std::vector<Word>& words) {
    for (const auto& [word, number] : words) {
        const Pc pc = machine::ReadDescription(std::string(place.before) + word + place.after, "pc.json");
        EXPECT_EQ(place.number(pc), number) << word;
    }
}

}  // namespace

TEST(PublishedWords, Buses_AreThoseOfTheVirtualDiskService) {
    ExpectNumbers({R"({"disks": [{"number": 0, "busType": ")", R"("}]})",
                   [](const Pc& pc) { return pc.disks[0].busType; }},
                  {{"unknown", VDS_BUS_TYPE_UNKNOWN},
                   {"scsi", VDS_BUS_TYPE_SCSI},
                   {"atapi", VDS_BUS_TYPE_ATAPI},
                   {"ata", VDS_BUS_TYPE_ATA},
                   {"firewire", VDS_BUS_TYPE_1394},
                   {"usb", VDS_BUS_TYPE_USB},
                   {"raid", VDS_BUS_TYPE_RAID},
                   {"sas", VDS_BUS_TYPE_SAS},
                   {"sata", VDS_BUS_TYPE_SATA},
                   {"nvme", VDS_BUS_TYPE_NVME}});
}

TEST(PublishedWords, DeviceTypes_AreThoseOfTheMedium) {
    ExpectNumbers({R"({"disks": [{"number": 0, "deviceType": ")", R"("}]})",
                   [](const Pc& pc) { return pc.disks[0].deviceType; }},
                  {{"cd-rom", FILE_DEVICE_CD_ROM}, {"disk", FILE_DEVICE_DISK}, {"dvd", FILE_DEVICE_DVD}});
}

TEST(PublishedWords, StatesOfPacks_AreThoseOfTheVirtualDiskService) {
    ExpectNumbers({R"({"packs": [{"name": "data", "status": ")", R"("}]})",
                   [](const Pc& pc) { return static_cast<uint32_t>(pc.packs[0].status); }},
                  {{"unknown", VDS_PS_UNKNOWN}, {"online", VDS_PS_ONLINE}, {"offline", VDS_PS_OFFLINE}});
}

TEST(PublishedWords, Extents_AreThoseOfTheVirtualDiskService) {
    ExpectNumbers({R"({"volumes": [{"letters": "R", "extentType": ")", R"("}]})",
                   [](const Pc& pc) { return static_cast<uint32_t>(*pc.volumes[0].extentType); }},
                  {{"unknown", VDS_DET_UNKNOWN},
                   {"free", VDS_DET_FREE},
                   {"data", VDS_DET_DATA},
                   {"oem", VDS_DET_OEM},
                   {"esp", VDS_DET_ESP},
                   {"msr", VDS_DET_MSR},
                   {"ldm", VDS_DET_LDM},
                   {"unusable", VDS_DET_UNUSABLE}});
}

TEST(PublishedWords, DriveTypes_AreThoseOfGetDriveType) {
    ExpectNumbers({R"({"volumes": [{"letters": "R", "driveType": ")", R"("}]})",
                   [](const Pc& pc) { return static_cast<uint32_t>(pc.volumes[0].driveType); }},
                  {{"unknown", DRIVE_UNKNOWN},
                   {"no-root", DRIVE_NO_ROOT_DIR},
                   {"removable", DRIVE_REMOVABLE},
                   {"fixed", DRIVE_FIXED},
                   {"remote", DRIVE_REMOTE},
                   {"optical", DRIVE_CDROM},
                   {"ram-disk", DRIVE_RAMDISK}});
}

TEST(PublishedWords, EncryptionMethods_AreThoseOfGetEncryptionMethod) {
    ExpectNumbers({R"({"encryptableVolumes": [{"encryptionMethod": ")", R"("}]})",
                   [](const Pc& pc) { return pc.encryptableVolumes->at(0).encryptionMethod; }},
                  {{"none", 0},
                   {"aes-128-diffuser", 1},
                   {"aes-256-diffuser", 2},
                   {"aes-128", 3},
                   {"aes-256", 4},
                   {"hardware", 5},
                   {"xts-aes-128", 6},
                   {"xts-aes-256", 7},
                   {"unknown", 0xFFFFFFFF}});
}
