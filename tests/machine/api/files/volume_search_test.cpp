// The names of volumes, and what they are good for without a letter.
#include <gmock/gmock.h>

#include "machine/facts/volume_names.h"
#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const WCHAR* recovery = TEXT("\\\\?\\Volume{b2f6b2f6-0000-0000-0000-100000000000}\\");
constexpr const WCHAR* recoveryDevice = TEXT("\\\\?\\Volume{b2f6b2f6-0000-0000-0000-100000000000}");

std::vector<std::string> AllNames() {
    std::vector<std::string> names;
    WCHAR name[50];
    const HANDLE search = FindFirstVolumeW(name, 50);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
        names.push_back(ToUtf8(name));
    } while (FindNextVolumeW(search, name, 50));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
    EXPECT_TRUE(FindVolumeClose(search));
    return names;
}

std::string NameOf(const WCHAR* root) {
    WCHAR name[50];
    return GetVolumeNameForVolumeMountPointW(root, name, 50) ? ToUtf8(name) : "";
}

}  // namespace

TEST(VolumeNames, MbrDisk_HaveItsSignatureAndTheOffsetOfThePartition) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_THAT(AllNames(), ElementsAre("\\\\?\\Volume{b2f6b2f6-0000-0000-0000-100000000000}\\",
                                        "\\\\?\\Volume{b2f6b2f6-0000-0000-0000-10c003000000}\\",
                                        "\\\\?\\Volume{b2f6b2f6-0000-0000-0000-10c035000000}\\"));
    EXPECT_EQ(NameOf(TEXT("c:\\")), "\\\\?\\Volume{b2f6b2f6-0000-0000-0000-10c003000000}\\");
}

TEST(VolumeNames, GptDisk_HaveTheGuidOfThePartition) {
    machine::Pc facts = machine::FactoryGpt();
    facts.disks[0].partitions.resize(3);
    EmulatedPc pc(facts);
    EXPECT_THAT(AllNames(), ElementsAre("\\\\?\\Volume{6f1f3a52-0000-4000-8000-000000000001}\\",
                                        "\\\\?\\Volume{6f1f3a52-0000-4000-8000-000000000002}\\",
                                        "\\\\?\\Volume{6f1f3a52-0000-4000-8000-000000000003}\\"));
}

TEST(VolumeNames, HiddenPartitionAndNetworkDrive_HaveNone) {
    machine::Pc facts = machine::FactoryGpt();
    facts.disks[0].partitions.resize(1);
    facts.disks[0].partitions[0].attributes = 0x4000000000000000;
    machine::Volume drive;
    drive.letters = "N";
    drive.driveType = machine::DriveType::Remote;
    facts.volumes = {drive};
    EmulatedPc pc(facts);
    EXPECT_THAT(AllNames(), IsEmpty());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
    WCHAR name[50];
    EXPECT_FALSE(GetVolumeNameForVolumeMountPointW(TEXT("N:\\"), name, 50));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

TEST(VolumeNames, TwoDisksOfOneSignature_DifferAllTheSame) {
    machine::Pc facts = machine::FactoryMbr();
    facts.disks.push_back(facts.disks[0]);
    facts.disks[1].number = 1;
    for (machine::Partition& partition : facts.disks[1].partitions) {
        if (partition.volume) partition.volume->letters.clear();
    }
    EmulatedPc pc(facts);
    std::vector<std::string> names = AllNames();
    std::ranges::sort(names);
    EXPECT_EQ(names.size(), 6u);
    EXPECT_EQ(std::ranges::adjacent_find(names), names.end());
}

TEST(VolumeNames, ShortBufferMissingLetterClosedSearch_FailWithTheirErrors) {
    EmulatedPc pc(machine::FactoryMbr());
    WCHAR name[50];
    EXPECT_EQ(FindFirstVolumeW(name, 49), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILENAME_EXCED_RANGE});
    const struct {
        const WCHAR* root;
        DWORD size;
        DWORD error;
    } rows[] = {{TEXT("C:\\"), 49, ERROR_FILENAME_EXCED_RANGE},
                {TEXT("Q:\\"), 50, ERROR_FILE_NOT_FOUND},
                {TEXT("C:"), 50, ERROR_INVALID_NAME},
                {TEXT("C:\\Windows\\"), 50, ERROR_NOT_A_REPARSE_POINT}};
    for (const auto& row : rows) {
        EXPECT_FALSE(GetVolumeNameForVolumeMountPointW(row.root, name, row.size));
        EXPECT_EQ(GetLastError(), row.error) << ToUtf8(row.root);
    }
    const HANDLE search = FindFirstVolumeW(name, 50);
    EXPECT_THAT(pc.ledger.Outstanding(), Contains(testing::Pair("volume search", 1)));
    EXPECT_FALSE(FindNextVolumeW(search, name, 49));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILENAME_EXCED_RANGE});
    EXPECT_TRUE(FindNextVolumeW(search, name, 50));
    EXPECT_TRUE(FindVolumeClose(search));
    EXPECT_FALSE(FindNextVolumeW(search, name, 50));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_FALSE(FindVolumeClose(search));
    EXPECT_THAT(pc.ledger.Outstanding(), IsEmpty());
}

TEST(VolumeNames, EachCall_CanFail) {
    EmulatedPc pc(machine::FactoryMbr());
    WCHAR name[50];
    const HANDLE search = FindFirstVolumeW(name, 50);
    FailNext(pc, "FindNextVolumeW", ERROR_GEN_FAILURE);
    EXPECT_FALSE(FindNextVolumeW(search, name, 50));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_GEN_FAILURE});
    FailNext(pc, "FindVolumeClose", ERROR_GEN_FAILURE);
    EXPECT_FALSE(FindVolumeClose(search));
    EXPECT_TRUE(FindVolumeClose(search));
    FailNext(pc, "FindFirstVolumeW", ERROR_GEN_FAILURE);
    EXPECT_EQ(FindFirstVolumeW(name, 50), INVALID_HANDLE_VALUE);
    FailNext(pc, "GetVolumeNameForVolumeMountPointW", ERROR_GEN_FAILURE);
    EXPECT_FALSE(GetVolumeNameForVolumeMountPointW(TEXT("C:\\"), name, 50));
    FailNext(pc, "PathIsDirectoryW", ERROR_GEN_FAILURE);
    EXPECT_FALSE(PathIsDirectoryW(TEXT("C:\\Windows")));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_GEN_FAILURE});
}

// The recovery volume of the factory disk has no letter.
TEST(VolumeNames, VolumeWithoutLetter_IsReadByEitherName) {
    EmulatedPc pc(machine::FactoryMbr());
    for (const WCHAR* const root : {recovery, TEXT("\\\\?\\GLOBALROOT\\Device\\Harddisk0\\Partition1\\")}) {
        WCHAR label[20];
        EXPECT_TRUE(GetVolumeInformationW(root, label, 20, nullptr, nullptr, nullptr, nullptr, 0));
        EXPECT_EQ(ToUtf8(label), "Recovery");
        EXPECT_EQ(GetDriveTypeW(root), UINT{DRIVE_FIXED});
        const std::string folder = ToUtf8(root) + "sources";
        EXPECT_TRUE(PathFileExistsW(ToWide(folder + "\\boot.wim").c_str()));
        EXPECT_TRUE(PathIsDirectoryW(ToWide(folder).c_str()));
        EXPECT_FALSE(PathIsDirectoryW(ToWide(folder + "\\boot.wim").c_str()));
        EXPECT_FALSE(PathFileExistsW(ToWide(folder + "\\none").c_str()));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    }
}

TEST(VolumeNames, OfNoVolume_FindNothing) {
    EmulatedPc pc(machine::FactoryMbr());
    for (const WCHAR* const root :
         {TEXT("\\\\?\\Volume{b2f6b2f6-0000-0000-0000-100000000001}\\"), TEXT("\\\\?\\Volume{b2f6b2f6\\"),
          TEXT("Volume{b2f6b2f6-0000}\\"), TEXT("\\\\?\\GLOBALROOT\\Device\\Harddisk0\\Partition4\\"),
          TEXT("\\\\?\\GLOBALROOT\\Device\\Harddisk0\\Partition\\"),
          TEXT("\\\\?\\GLOBALROOT\\Device\\Harddisk1\\Partition1\\")}) {
        EXPECT_EQ(GetDriveTypeW(root), UINT{DRIVE_NO_ROOT_DIR}) << ToUtf8(root);
        EXPECT_FALSE(PathFileExistsW(root)) << ToUtf8(root);
    }
}

TEST(VolumeNames, OpenedAsDevice_AnswersControlsThoughTheLetterIsRefused) {
    machine::Pc facts = machine::FactoryMbr();
    facts.disks[0].partitions[0].volume->openError = ERROR_ACCESS_DENIED;
    EmulatedPc pc(facts);
    constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE;
    EXPECT_EQ(CreateFileW(recoveryDevice, GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    const HANDLE volume = CreateFileW(recoveryDevice, 0, share, nullptr, OPEN_EXISTING, 0, nullptr);
    VOLUME_DISK_EXTENTS extents = {};
    DWORD returned = 0;
    EXPECT_TRUE(DeviceIoControl(volume, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, nullptr, 0, &extents,
                                sizeof extents, &returned, nullptr));
    EXPECT_EQ(extents.Extents[0].StartingOffset.QuadPart, 1024 * 1024);
    EXPECT_TRUE(CloseHandle(volume));
}
