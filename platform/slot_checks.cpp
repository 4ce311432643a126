// Compile-time checks that each method of the platform's interfaces is in its published slot. Every build
// compiles this file.

#include "platform/method_slots.h"
#include "platform/vds.h"

namespace {

// Counted after the three of IUnknown.
template <typename... Methods>
[[gnu::always_inline]] inline void CheckFromThree(Methods... methods) {
    CheckSlotsFrom(3, methods...);
}

}  // namespace

void CheckSlotsOfIEnumVdsObject() {
    CheckFromThree(&IEnumVdsObject::Next, &IEnumVdsObject::Skip, &IEnumVdsObject::Reset,
                   &IEnumVdsObject::Clone);
}

void CheckSlotsOfIVdsServiceLoader() {
    CheckFromThree(&IVdsServiceLoader::LoadService);
}

void CheckSlotsOfIVdsService() {
    CheckFromThree(&IVdsService::IsServiceReady, &IVdsService::WaitForServiceReady,
                   &IVdsService::GetProperties, &IVdsService::QueryProviders, &IVdsService::QueryMaskedDisks,
                   &IVdsService::QueryUnallocatedDisks, &IVdsService::GetObject,
                   &IVdsService::QueryDriveLetters, &IVdsService::QueryFileSystemTypes,
                   &IVdsService::Reenumerate, &IVdsService::Refresh, &IVdsService::CleanupObsoleteMountPoints,
                   &IVdsService::Advise, &IVdsService::Unadvise, &IVdsService::Reboot, &IVdsService::SetFlags,
                   &IVdsService::ClearFlags);
}

void CheckSlotsOfIVdsProvider() {
    CheckFromThree(&IVdsProvider::GetProperties);
}

void CheckSlotsOfIVdsSwProvider() {
    CheckFromThree(&IVdsSwProvider::QueryPacks, &IVdsSwProvider::CreatePack);
}

void CheckSlotsOfIVdsPack() {
    CheckFromThree(&IVdsPack::GetProperties, &IVdsPack::GetProvider, &IVdsPack::QueryVolumes,
                   &IVdsPack::QueryDisks, &IVdsPack::CreateVolume, &IVdsPack::AddDisk,
                   &IVdsPack::MigrateDisks, &IVdsPack::ReplaceDisk, &IVdsPack::RemoveMissingDisk,
                   &IVdsPack::Recover);
}

void CheckSlotsOfIVdsDisk() {
    CheckFromThree(&IVdsDisk::GetProperties, &IVdsDisk::GetPack, &IVdsDisk::GetIdentificationData,
                   &IVdsDisk::QueryExtents, &IVdsDisk::ConvertStyle, &IVdsDisk::SetFlags,
                   &IVdsDisk::ClearFlags);
}

void CheckSlotsOfIVdsAdvancedDisk() {
    CheckFromThree(&IVdsAdvancedDisk::GetPartitionProperties, &IVdsAdvancedDisk::QueryPartitions,
                   &IVdsAdvancedDisk::CreatePartition, &IVdsAdvancedDisk::DeletePartition,
                   &IVdsAdvancedDisk::ChangeAttributes, &IVdsAdvancedDisk::AssignDriveLetter,
                   &IVdsAdvancedDisk::DeleteDriveLetter, &IVdsAdvancedDisk::GetDriveLetter,
                   &IVdsAdvancedDisk::FormatPartition, &IVdsAdvancedDisk::Clean);
}

void CheckSlotsOfIVdsAdvancedDisk2() {
    CheckFromThree(&IVdsAdvancedDisk2::ChangePartitionType);
}

void CheckSlotsOfIVdsVolumeMF() {
    CheckFromThree(&IVdsVolumeMF::GetFileSystemProperties, &IVdsVolumeMF::Format,
                   &IVdsVolumeMF::AddAccessPath, &IVdsVolumeMF::QueryAccessPaths,
                   &IVdsVolumeMF::QueryReparsePoints, &IVdsVolumeMF::DeleteAccessPath, &IVdsVolumeMF::Mount,
                   &IVdsVolumeMF::Dismount, &IVdsVolumeMF::SetFileSystemFlags,
                   &IVdsVolumeMF::ClearFileSystemFlags);
}

void CheckSlotsOfIWbemLocator() {
    CheckFromThree(&IWbemLocator::ConnectServer);
}

void CheckSlotsOfIWbemServices() {
    CheckFromThree(
        &IWbemServices::OpenNamespace, &IWbemServices::CancelAsyncCall, &IWbemServices::QueryObjectSink,
        &IWbemServices::GetObject, &IWbemServices::GetObjectAsync, &IWbemServices::PutClass,
        &IWbemServices::PutClassAsync, &IWbemServices::DeleteClass, &IWbemServices::DeleteClassAsync,
        &IWbemServices::CreateClassEnum, &IWbemServices::CreateClassEnumAsync, &IWbemServices::PutInstance,
        &IWbemServices::PutInstanceAsync, &IWbemServices::DeleteInstance, &IWbemServices::DeleteInstanceAsync,
        &IWbemServices::CreateInstanceEnum, &IWbemServices::CreateInstanceEnumAsync,
        &IWbemServices::ExecQuery, &IWbemServices::ExecQueryAsync, &IWbemServices::ExecNotificationQuery,
        &IWbemServices::ExecNotificationQueryAsync, &IWbemServices::ExecMethod,
        &IWbemServices::ExecMethodAsync);
}

void CheckSlotsOfIEnumWbemClassObject() {
    CheckFromThree(&IEnumWbemClassObject::Reset, &IEnumWbemClassObject::Next,
                   &IEnumWbemClassObject::NextAsync, &IEnumWbemClassObject::Clone,
                   &IEnumWbemClassObject::Skip);
}

void CheckSlotsOfIWbemClassObject() {
    CheckFromThree(
        &IWbemClassObject::GetQualifierSet, &IWbemClassObject::Get, &IWbemClassObject::Put,
        &IWbemClassObject::Delete, &IWbemClassObject::GetNames, &IWbemClassObject::BeginEnumeration,
        &IWbemClassObject::Next, &IWbemClassObject::EndEnumeration,
        &IWbemClassObject::GetPropertyQualifierSet, &IWbemClassObject::Clone,
        &IWbemClassObject::GetObjectText, &IWbemClassObject::SpawnDerivedClass,
        &IWbemClassObject::SpawnInstance, &IWbemClassObject::CompareTo, &IWbemClassObject::GetPropertyOrigin,
        &IWbemClassObject::InheritsFrom, &IWbemClassObject::GetMethod, &IWbemClassObject::PutMethod,
        &IWbemClassObject::DeleteMethod, &IWbemClassObject::BeginMethodEnumeration,
        &IWbemClassObject::NextMethod, &IWbemClassObject::EndMethodEnumeration,
        &IWbemClassObject::GetMethodQualifierSet, &IWbemClassObject::GetMethodOrigin);
}
