// The objects between the library and the Virtual Disk Service: what is asked reaches the service, what would
// change something does not.
#include "tools/kestova/passage/passed_objects.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "machine/description/description.h"
#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/machine/api/com/com_client.h"

namespace {

using testing::Optional;

std::pair<HRESULT, WCHAR> LetterAt(IVdsAdvancedDisk* disk, uint64_t offset) {
    WCHAR letter = 0;
    const HRESULT answer = disk->GetDriveLetter(offset, &letter);
    return {answer, letter};
}

// A client that has the service through the passage.
class Passage : public testing::Test {
  protected:
    Passage() {
        IUnknown* loader = nullptr;
        EXPECT_EQ(CoCreateInstance(CLSID_VdsLoader, nullptr, CLSCTX_LOCAL_SERVER, IID_IVdsServiceLoader,
                                   reinterpret_cast<void**>(&loader)),
                  S_OK);
        EXPECT_EQ(PassThrough(IID_IVdsServiceLoader, reinterpret_cast<void**>(&loader), stop), S_OK);
        const ComPtr<IVdsServiceLoader> passed = Ask<IVdsServiceLoader>(loader, IID_IVdsServiceLoader);
        loader->Release();
        EXPECT_EQ(passed->LoadService(nullptr, service.Put()), S_OK);
    }
    ~Passage() override {
        service.Reset();
        EXPECT_EQ(client.OnLoan(), Loans());
    }

    VDS_OBJECT_ID Disk() { return DiskId(service.Get(), "\\\\?\\PhysicalDrive0"); }
    template <typename Interface>
    ComPtr<Interface> OpenedDisk(REFIID id) {
        return OpenDisk<Interface>(service.Get(), Disk(), id);
    }
    const machine::Partition& Partition(size_t index) { return client.pc.facts.disks[0].partitions[index]; }
    const machine::Partition& Windows() {
        return *std::ranges::find_if(client.pc.facts.disks[0].partitions,
                                     [](const machine::Partition& partition) {
                                         return partition.volume && partition.volume->letters == "C";
                                     });
    }

    ComClient client{machine::FactoryMbr()};
    ChangeStop stop;
    ComPtr<IVdsService> service;
};

TEST_F(Passage, ServicePacksDisksAndVolume_Asked_AnswerAsWithoutIt) {
    EXPECT_EQ(service->IsServiceReady(), S_OK);
    EXPECT_EQ(service->WaitForServiceReady(), S_OK);
    EXPECT_EQ(PackLines(service.Get()), PackLines(LoadVds().Get()));
    EXPECT_EQ(UnallocatedDisks(service.Get()), UnallocatedDisks(LoadVds().Get()));
    const ComPtr<IVdsAdvancedDisk> disk = OpenedDisk<IVdsAdvancedDisk>(IID_IVdsAdvancedDisk);
    EXPECT_EQ(PartitionsOf(disk.Get()).size(), client.pc.facts.disks[0].partitions.size());
    const ComPtr<IVdsService> without = LoadVds();
    const ComPtr<IVdsAdvancedDisk> same =
        OpenDisk<IVdsAdvancedDisk>(without.Get(), Disk(), IID_IVdsAdvancedDisk);
    for (const machine::Partition& partition : client.pc.facts.disks[0].partitions)
        EXPECT_EQ(LetterAt(disk.Get(), partition.offset), LetterAt(same.Get(), partition.offset));

    const std::vector<VDS_DISK_EXTENT> extents = ExtentsOf(OpenedDisk<IVdsDisk>(IID_IVdsDisk).Get());
    const auto extent = std::ranges::find(extents, Windows().offset, &VDS_DISK_EXTENT::ullOffset);
    ASSERT_NE(extent, extents.end());
    ComPtr<IUnknown> object;
    ASSERT_EQ(service->GetObject(extent->volumeId, VDS_OT_VOLUME, object.Put()), S_OK);
    const ComPtr<IVdsVolumeMF> volume = Ask<IVdsVolumeMF>(object.Get(), IID_IVdsVolumeMF);
    VDS_FILE_SYSTEM_PROP properties{};
    EXPECT_EQ(volume->GetFileSystemProperties(&properties), S_OK);
    EXPECT_EQ(ToUtf8(properties.pwszLabel), Windows().volume->label);
    CoTaskMemFree(properties.pwszLabel);
    EXPECT_EQ(stop.TakeFirst(), std::nullopt);
}

TEST_F(Passage, FlagTypeAndLetters_Changed_AreRefusedAndNamed) {
    const machine::Pc before = client.pc.facts;
    const ComPtr<IVdsAdvancedDisk> disk = OpenedDisk<IVdsAdvancedDisk>(IID_IVdsAdvancedDisk);
    const uint64_t first = Partition(0).offset;
    const std::string place = "the partition at offset " + std::to_string(first);

    CHANGE_ATTRIBUTES_PARAMETERS flag{};
    flag.style = VDS_PST_MBR;
    flag.MbrPartInfo.bootIndicator = TRUE;
    EXPECT_EQ(disk->ChangeAttributes(first, &flag), refusedChange);
    EXPECT_THAT(stop.TakeFirst(), Optional("make " + place + " active"));
    flag.MbrPartInfo.bootIndicator = FALSE;
    EXPECT_EQ(disk->ChangeAttributes(first, &flag), refusedChange);
    EXPECT_THAT(stop.TakeFirst(), Optional("no longer keep " + place + " active"));
    flag.style = VDS_PST_GPT;
    flag.GptPartInfo.attributes = 0x8000000000000001;
    EXPECT_EQ(disk->ChangeAttributes(first, &flag), refusedChange);
    EXPECT_THAT(stop.TakeFirst(), Optional("set the attributes of " + place + " to 0x8000000000000001"));

    EXPECT_EQ(disk->AssignDriveLetter(first, TEXT('Z')), refusedChange);
    EXPECT_THAT(stop.TakeFirst(), Optional("give the letter Z to " + place));
    EXPECT_EQ(disk->DeleteDriveLetter(first, TEXT('E')), refusedChange);
    EXPECT_THAT(stop.TakeFirst(), Optional("take the letter E from " + place));

    const ComPtr<IVdsAdvancedDisk2> types = OpenedDisk<IVdsAdvancedDisk2>(IID_IVdsAdvancedDisk2);
    CHANGE_PARTITION_TYPE_PARAMETERS type{};
    type.style = VDS_PST_MBR;
    type.MbrPartInfo.partitionType = MBR_ID_NTFS;
    EXPECT_EQ(types->ChangePartitionType(first, TRUE, &type), refusedChange);
    EXPECT_THAT(stop.TakeFirst(), Optional("change the type of " + place + " to 0x07"));
    type.style = VDS_PST_GPT;
    type.GptPartInfo.partitionType = IID_IVdsDisk;
    EXPECT_EQ(types->ChangePartitionType(first, TRUE, &type), refusedChange);
    EXPECT_THAT(stop.TakeFirst(),
                Optional("change the type of " + place + " to 07e5c822-f00c-47a1-8fce-b244da56fd06"));

    EXPECT_EQ(machine::WriteDescription(client.pc.facts), machine::WriteDescription(before));
}

TEST_F(Passage, SecondChange_TheFirstIsKept) {
    const ComPtr<IVdsAdvancedDisk> disk = OpenedDisk<IVdsAdvancedDisk>(IID_IVdsAdvancedDisk);
    disk->AssignDriveLetter(1, TEXT('Y'));
    disk->AssignDriveLetter(2, TEXT('Z'));
    EXPECT_THAT(stop.TakeFirst(), Optional(std::string("give the letter Y to the partition at offset 1")));
    EXPECT_EQ(stop.TakeFirst(), std::nullopt);
}

TEST_F(Passage, MethodThatTheLibraryDoesNotCall_IsNotPassedOn) {
    EXPECT_EQ(service->Reboot(), VDS_E_NOT_SUPPORTED);
    EXPECT_EQ(service->CleanupObsoleteMountPoints(), VDS_E_NOT_SUPPORTED);
    EXPECT_EQ(OpenedDisk<IVdsDisk>(IID_IVdsDisk)->ConvertStyle(VDS_PST_GPT), VDS_E_NOT_SUPPORTED);
    EXPECT_EQ(
        OpenedDisk<IVdsAdvancedDisk>(IID_IVdsAdvancedDisk)->DeletePartition(Partition(0).offset, TRUE, TRUE),
        VDS_E_NOT_SUPPORTED);
}

TEST_F(Passage, FailureOfTheService_IsPassedOn) {
    client.pc.faults.Arm(
        {.call = "IVdsService::QueryProviders", .code = static_cast<uint32_t>(E_ACCESSDENIED)});
    ComPtr<IEnumVdsObject> list;
    EXPECT_EQ(service->QueryProviders(VDS_QUERY_SOFTWARE_PROVIDERS, list.Put()), E_ACCESSDENIED);
    EXPECT_EQ(list.Get(), nullptr);
}

TEST_F(Passage, UnknownInterface_IsReleasedAndRefused) {
    ComPtr<IUnknown> object;
    ASSERT_EQ(service->GetObject(Disk(), VDS_OT_DISK, object.Put()), S_OK);
    void* given = object.Get();
    object->AddRef();
    EXPECT_EQ(PassThrough(IID_IWbemServices, &given, stop), E_NOINTERFACE);
    EXPECT_EQ(given, nullptr);
}

}  // namespace
