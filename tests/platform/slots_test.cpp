// Each method stands in its published slot, counted after the three of IUnknown.

#include <gtest/gtest.h>

#include <cstring>

#include "platform/vds.h"

namespace {

// The slot that a call through a pointer to a virtual method goes to: such a pointer begins with the slot's
// offset in bytes, plus one.
template <typename Method>
size_t Slot(Method method) {
    size_t offset = 0;
    std::memcpy(&offset, &method, sizeof(offset));
    EXPECT_EQ(offset % sizeof(void*), 1U);
    return offset / sizeof(void*);
}

// --- the Virtual Disk Service ---

TEST(Slots, OfIEnumVdsObject) {
    EXPECT_EQ(Slot(&IEnumVdsObject::Next), 3U);
    EXPECT_EQ(Slot(&IEnumVdsObject::Skip), 4U);
    EXPECT_EQ(Slot(&IEnumVdsObject::Reset), 5U);
    EXPECT_EQ(Slot(&IEnumVdsObject::Clone), 6U);
}

TEST(Slots, OfIVdsServiceLoader) {
    EXPECT_EQ(Slot(&IVdsServiceLoader::LoadService), 3U);
}

TEST(Slots, OfIVdsService) {
    EXPECT_EQ(Slot(&IVdsService::IsServiceReady), 3U);
    EXPECT_EQ(Slot(&IVdsService::WaitForServiceReady), 4U);
    EXPECT_EQ(Slot(&IVdsService::GetProperties), 5U);
    EXPECT_EQ(Slot(&IVdsService::QueryProviders), 6U);
    EXPECT_EQ(Slot(&IVdsService::QueryMaskedDisks), 7U);
    EXPECT_EQ(Slot(&IVdsService::QueryUnallocatedDisks), 8U);
    EXPECT_EQ(Slot(&IVdsService::GetObject), 9U);
    EXPECT_EQ(Slot(&IVdsService::QueryDriveLetters), 10U);
    EXPECT_EQ(Slot(&IVdsService::QueryFileSystemTypes), 11U);
    EXPECT_EQ(Slot(&IVdsService::Reenumerate), 12U);
    EXPECT_EQ(Slot(&IVdsService::Refresh), 13U);
    EXPECT_EQ(Slot(&IVdsService::CleanupObsoleteMountPoints), 14U);
    EXPECT_EQ(Slot(&IVdsService::Advise), 15U);
    EXPECT_EQ(Slot(&IVdsService::Unadvise), 16U);
    EXPECT_EQ(Slot(&IVdsService::Reboot), 17U);
    EXPECT_EQ(Slot(&IVdsService::SetFlags), 18U);
    EXPECT_EQ(Slot(&IVdsService::ClearFlags), 19U);
}

TEST(Slots, OfIVdsSwProvider) {
    EXPECT_EQ(Slot(&IVdsSwProvider::QueryPacks), 3U);
    EXPECT_EQ(Slot(&IVdsSwProvider::CreatePack), 4U);
}

TEST(Slots, OfIVdsPack) {
    EXPECT_EQ(Slot(&IVdsPack::GetProperties), 3U);
    EXPECT_EQ(Slot(&IVdsPack::GetProvider), 4U);
    EXPECT_EQ(Slot(&IVdsPack::QueryVolumes), 5U);
    EXPECT_EQ(Slot(&IVdsPack::QueryDisks), 6U);
    EXPECT_EQ(Slot(&IVdsPack::CreateVolume), 7U);
    EXPECT_EQ(Slot(&IVdsPack::AddDisk), 8U);
    EXPECT_EQ(Slot(&IVdsPack::MigrateDisks), 9U);
    EXPECT_EQ(Slot(&IVdsPack::ReplaceDisk), 10U);
    EXPECT_EQ(Slot(&IVdsPack::RemoveMissingDisk), 11U);
    EXPECT_EQ(Slot(&IVdsPack::Recover), 12U);
}

TEST(Slots, OfIVdsDisk) {
    EXPECT_EQ(Slot(&IVdsDisk::GetProperties), 3U);
    EXPECT_EQ(Slot(&IVdsDisk::GetPack), 4U);
    EXPECT_EQ(Slot(&IVdsDisk::GetIdentificationData), 5U);
    EXPECT_EQ(Slot(&IVdsDisk::QueryExtents), 6U);
    EXPECT_EQ(Slot(&IVdsDisk::ConvertStyle), 7U);
    EXPECT_EQ(Slot(&IVdsDisk::SetFlags), 8U);
    EXPECT_EQ(Slot(&IVdsDisk::ClearFlags), 9U);
}

TEST(Slots, OfIVdsAdvancedDisk) {
    EXPECT_EQ(Slot(&IVdsAdvancedDisk::GetPartitionProperties), 3U);
    EXPECT_EQ(Slot(&IVdsAdvancedDisk::QueryPartitions), 4U);
    EXPECT_EQ(Slot(&IVdsAdvancedDisk::CreatePartition), 5U);
    EXPECT_EQ(Slot(&IVdsAdvancedDisk::DeletePartition), 6U);
    EXPECT_EQ(Slot(&IVdsAdvancedDisk::ChangeAttributes), 7U);
    EXPECT_EQ(Slot(&IVdsAdvancedDisk::AssignDriveLetter), 8U);
    EXPECT_EQ(Slot(&IVdsAdvancedDisk::DeleteDriveLetter), 9U);
    EXPECT_EQ(Slot(&IVdsAdvancedDisk::GetDriveLetter), 10U);
    EXPECT_EQ(Slot(&IVdsAdvancedDisk::FormatPartition), 11U);
    EXPECT_EQ(Slot(&IVdsAdvancedDisk::Clean), 12U);
}

TEST(Slots, OfIVdsAdvancedDisk2) {
    EXPECT_EQ(Slot(&IVdsAdvancedDisk2::ChangePartitionType), 3U);
}

TEST(Slots, OfIVdsVolumeMF) {
    EXPECT_EQ(Slot(&IVdsVolumeMF::GetFileSystemProperties), 3U);
    EXPECT_EQ(Slot(&IVdsVolumeMF::Format), 4U);
    EXPECT_EQ(Slot(&IVdsVolumeMF::AddAccessPath), 5U);
    EXPECT_EQ(Slot(&IVdsVolumeMF::QueryAccessPaths), 6U);
    EXPECT_EQ(Slot(&IVdsVolumeMF::QueryReparsePoints), 7U);
    EXPECT_EQ(Slot(&IVdsVolumeMF::DeleteAccessPath), 8U);
    EXPECT_EQ(Slot(&IVdsVolumeMF::Mount), 9U);
    EXPECT_EQ(Slot(&IVdsVolumeMF::Dismount), 10U);
    EXPECT_EQ(Slot(&IVdsVolumeMF::SetFileSystemFlags), 11U);
    EXPECT_EQ(Slot(&IVdsVolumeMF::ClearFileSystemFlags), 12U);
}

// --- WMI ---

TEST(Slots, OfIWbemLocator) {
    EXPECT_EQ(Slot(&IWbemLocator::ConnectServer), 3U);
}

TEST(Slots, OfIWbemServices) {
    EXPECT_EQ(Slot(&IWbemServices::OpenNamespace), 3U);
    EXPECT_EQ(Slot(&IWbemServices::CancelAsyncCall), 4U);
    EXPECT_EQ(Slot(&IWbemServices::QueryObjectSink), 5U);
    EXPECT_EQ(Slot(&IWbemServices::GetObject), 6U);
    EXPECT_EQ(Slot(&IWbemServices::GetObjectAsync), 7U);
    EXPECT_EQ(Slot(&IWbemServices::PutClass), 8U);
    EXPECT_EQ(Slot(&IWbemServices::PutClassAsync), 9U);
    EXPECT_EQ(Slot(&IWbemServices::DeleteClass), 10U);
    EXPECT_EQ(Slot(&IWbemServices::DeleteClassAsync), 11U);
    EXPECT_EQ(Slot(&IWbemServices::CreateClassEnum), 12U);
    EXPECT_EQ(Slot(&IWbemServices::CreateClassEnumAsync), 13U);
    EXPECT_EQ(Slot(&IWbemServices::PutInstance), 14U);
    EXPECT_EQ(Slot(&IWbemServices::PutInstanceAsync), 15U);
    EXPECT_EQ(Slot(&IWbemServices::DeleteInstance), 16U);
    EXPECT_EQ(Slot(&IWbemServices::DeleteInstanceAsync), 17U);
    EXPECT_EQ(Slot(&IWbemServices::CreateInstanceEnum), 18U);
    EXPECT_EQ(Slot(&IWbemServices::CreateInstanceEnumAsync), 19U);
    EXPECT_EQ(Slot(&IWbemServices::ExecQuery), 20U);
    EXPECT_EQ(Slot(&IWbemServices::ExecQueryAsync), 21U);
    EXPECT_EQ(Slot(&IWbemServices::ExecNotificationQuery), 22U);
    EXPECT_EQ(Slot(&IWbemServices::ExecNotificationQueryAsync), 23U);
    EXPECT_EQ(Slot(&IWbemServices::ExecMethod), 24U);
    EXPECT_EQ(Slot(&IWbemServices::ExecMethodAsync), 25U);
}

TEST(Slots, OfIEnumWbemClassObject) {
    EXPECT_EQ(Slot(&IEnumWbemClassObject::Reset), 3U);
    EXPECT_EQ(Slot(&IEnumWbemClassObject::Next), 4U);
    EXPECT_EQ(Slot(&IEnumWbemClassObject::NextAsync), 5U);
    EXPECT_EQ(Slot(&IEnumWbemClassObject::Clone), 6U);
    EXPECT_EQ(Slot(&IEnumWbemClassObject::Skip), 7U);
}

TEST(Slots, OfIWbemClassObject) {
    EXPECT_EQ(Slot(&IWbemClassObject::GetQualifierSet), 3U);
    EXPECT_EQ(Slot(&IWbemClassObject::Get), 4U);
    EXPECT_EQ(Slot(&IWbemClassObject::Put), 5U);
    EXPECT_EQ(Slot(&IWbemClassObject::Delete), 6U);
    EXPECT_EQ(Slot(&IWbemClassObject::GetNames), 7U);
    EXPECT_EQ(Slot(&IWbemClassObject::BeginEnumeration), 8U);
    EXPECT_EQ(Slot(&IWbemClassObject::Next), 9U);
    EXPECT_EQ(Slot(&IWbemClassObject::EndEnumeration), 10U);
    EXPECT_EQ(Slot(&IWbemClassObject::GetPropertyQualifierSet), 11U);
    EXPECT_EQ(Slot(&IWbemClassObject::Clone), 12U);
    EXPECT_EQ(Slot(&IWbemClassObject::GetObjectText), 13U);
    EXPECT_EQ(Slot(&IWbemClassObject::SpawnDerivedClass), 14U);
    EXPECT_EQ(Slot(&IWbemClassObject::SpawnInstance), 15U);
    EXPECT_EQ(Slot(&IWbemClassObject::CompareTo), 16U);
    EXPECT_EQ(Slot(&IWbemClassObject::GetPropertyOrigin), 17U);
    EXPECT_EQ(Slot(&IWbemClassObject::InheritsFrom), 18U);
    EXPECT_EQ(Slot(&IWbemClassObject::GetMethod), 19U);
    EXPECT_EQ(Slot(&IWbemClassObject::PutMethod), 20U);
    EXPECT_EQ(Slot(&IWbemClassObject::DeleteMethod), 21U);
    EXPECT_EQ(Slot(&IWbemClassObject::BeginMethodEnumeration), 22U);
    EXPECT_EQ(Slot(&IWbemClassObject::NextMethod), 23U);
    EXPECT_EQ(Slot(&IWbemClassObject::EndMethodEnumeration), 24U);
    EXPECT_EQ(Slot(&IWbemClassObject::GetMethodQualifierSet), 25U);
    EXPECT_EQ(Slot(&IWbemClassObject::GetMethodOrigin), 26U);
}

// --- identifiers that the toolchain's libraries define ---

TEST(Identifiers, OfWmi) {
    constexpr GUID locatorClass = {0x4590f811, 0x1d3a, 0x11d0, {0x89, 0x1f, 0, 0xaa, 0, 0x4b, 0x2e, 0x24}};
    constexpr GUID locator = {0xdc12a687, 0x737f, 0x11cf, {0x88, 0x4d, 0, 0xaa, 0, 0x4b, 0x2e, 0x24}};
    EXPECT_TRUE(IsEqualGUID(CLSID_WbemLocator, locatorClass));
    EXPECT_TRUE(IsEqualGUID(IID_IWbemLocator, locator));
}

}  // namespace
