#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;

namespace {

machine::Volume Disc() {
    machine::Volume disc;
    disc.letters = "E";
    disc.driveType = machine::DriveType::Optical;
    disc.label = machine::Fact<std::string>::Fails(ERROR_NOT_READY);
    return disc;
}

}  // namespace

TEST(GetDriveType, RootsAndOtherPaths_ReturnsTheTypeOfRootsOnly) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.facts.volumes = {Disc()};
    const struct {
        const WCHAR* root;
        UINT type;
    } rows[] = {
        {TEXT("C:\\"), DRIVE_FIXED},        {TEXT("c:"), DRIVE_FIXED},         {TEXT("E:\\"), DRIVE_CDROM},
        {TEXT("Q:"), DRIVE_NO_ROOT_DIR},    {TEXT("Q:\\"), DRIVE_NO_ROOT_DIR}, {TEXT("C"), DRIVE_NO_ROOT_DIR},
        {TEXT("C:\\x"), DRIVE_NO_ROOT_DIR}, {TEXT(""), DRIVE_NO_ROOT_DIR},     {nullptr, DRIVE_FIXED},
    };
    SetLastError(staleError);
    for (const auto& row : rows)
        EXPECT_EQ(GetDriveTypeW(row.root), row.type) << ToUtf8(row.root);
    EXPECT_EQ(GetLastError(), staleError);
}

TEST(GetDriveType, Fault_ReturnsTheCodeAsValue) {
    EmulatedPc pc(machine::FactoryMbr());
    FailNext(pc, "GetDriveTypeW", DRIVE_REMOVABLE);
    EXPECT_EQ(GetDriveTypeW(TEXT("C:\\")), UINT{DRIVE_REMOVABLE});
}

TEST(GetVolumeInformation, ReadableVolume_ReturnsLabelAndFileSystem) {
    EmulatedPc pc(machine::FactoryMbr());
    WCHAR label[MAX_PATH + 1];
    WCHAR fileSystem[MAX_PATH + 1];
    DWORD serial = 1, longest = 0, flags = 0;
    SetLastError(staleError);
    EXPECT_TRUE(GetVolumeInformationW(TEXT("C:\\"), label, MAX_PATH + 1, &serial, &longest, &flags,
                                      fileSystem, MAX_PATH + 1));
    EXPECT_EQ(ToUtf8(label), "Windows");
    EXPECT_EQ(ToUtf8(fileSystem), "NTFS");
    EXPECT_EQ(longest, 255u);
    EXPECT_TRUE(GetVolumeInformationW(TEXT("C:\\"), nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(GetLastError(), staleError);
}

TEST(GetVolumeInformation, MissingUnreadableOrShortBuffer_FailsWithItsError) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.facts.volumes = {Disc()};
    pc.facts.disks[0].partitions[2].volume->fileSystem = "RAW";
    const struct {
        const WCHAR* root;
        DWORD size;
        DWORD error;
    } rows[] = {
        {TEXT("C:"), 99, ERROR_INVALID_NAME},
        {TEXT("Q:\\"), 99, ERROR_PATH_NOT_FOUND},
        {TEXT("D:\\"), 99, ERROR_UNRECOGNIZED_VOLUME},
        {TEXT("E:\\"), 99, ERROR_NOT_READY},
        {TEXT("C:\\"), 7, ERROR_MORE_DATA},
    };
    WCHAR label[100];
    for (const auto& row : rows) {
        EXPECT_FALSE(GetVolumeInformationW(row.root, label, row.size, nullptr, nullptr, nullptr, nullptr, 0));
        EXPECT_EQ(GetLastError(), row.error) << ToUtf8(row.root);
    }
    FailNext(pc, "GetVolumeInformationW", ERROR_GEN_FAILURE);
    EXPECT_FALSE(GetVolumeInformationW(TEXT("C:\\"), label, 99, nullptr, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_GEN_FAILURE});
}

TEST(GetLogicalDriveStrings, AnyBuffer_ListsTheRootsOrReturnsTheSize) {
    EmulatedPc pc(machine::FactoryMbr());
    WCHAR roots[9];
    SetLastError(staleError);
    EXPECT_EQ(GetLogicalDriveStringsW(9, roots), 8u);
    EXPECT_EQ(std::u16string_view(roots, 9), std::u16string_view(u"C:\\\0D:\\\0\0", 9));
    roots[0] = u'!';
    EXPECT_EQ(GetLogicalDriveStringsW(8, roots), 9u);
    EXPECT_EQ(roots[0], u'!');
    EXPECT_EQ(GetLogicalDriveStringsW(0, nullptr), 9u);
    EXPECT_EQ(GetLastError(), staleError);
    FailNext(pc, "GetLogicalDriveStringsW", ERROR_GEN_FAILURE);
    EXPECT_EQ(GetLogicalDriveStringsW(9, roots), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_GEN_FAILURE});
}
