// Every call of COM, the Virtual Disk Service and WMI with an injected failure and with an injected empty
// success: the code is returned, every output is cleared, and nothing is handed out.
#include <functional>

#include "machine/calls/call_table.h"
#include "machine/facts/machines.h"
#include "tests/machine/api/com/com_client.h"

namespace {

// The initial value of outputs, to prove that they are cleared.
template <typename Type>
Type* Poison() {
    return reinterpret_cast<Type*>(0x10);
}

// All objects that the calls need, created before the fault is armed.
class FaultClient : public DiskClient {
  public:
    FaultClient() : DiskClient(machine::FactoryMbr()) {
        CoCreateInstance(CLSID_VdsLoader, nullptr, CLSCTX_LOCAL_SERVER, IID_IVdsServiceLoader,
                         reinterpret_cast<void**>(loader.Put()));
        service->QueryProviders(VDS_QUERY_SOFTWARE_PROVIDERS, list.Put());
        ComPtr<IUnknown> object;
        ULONG fetched = 0;
        list->Next(1, object.Put(), &fetched);
        provider = Ask<IVdsSwProvider>(object.Get(), IID_IVdsSwProvider);
        described = Ask<IVdsProvider>(object.Get(), IID_IVdsProvider);
        ComPtr<IEnumVdsObject> packs;
        provider->QueryPacks(packs.Put());
        pack = Ask<IVdsPack>(AllOf(packs.Get()).at(0).Get(), IID_IVdsPack);
        ComPtr<IUnknown> volumeObject;
        service->GetObject(VolumeId(2), VDS_OT_VOLUME, volumeObject.Put());
        volume = Ask<IVdsVolumeMF>(volumeObject.Get(), IID_IVdsVolumeMF);
        CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                         reinterpret_cast<void**>(locator.Put()));
        wmi = ConnectWmi();
        wmi->CreateInstanceEnum(className.Get(), 48, nullptr, instances.Put());
        wmi->GetObject(className.Get(), 0, nullptr, definition.Put(), nullptr);
    }

    uint64_t Offset() { return Partition(1).offset; }

    ComPtr<IVdsServiceLoader> loader;
    ComPtr<IEnumVdsObject> list;
    ComPtr<IVdsSwProvider> provider;
    ComPtr<IVdsProvider> described;  // the same
    ComPtr<IVdsPack> pack;
    ComPtr<IVdsVolumeMF> volume;
    SystemString className{"Win32_DiskDrive"};
    ComPtr<IWbemLocator> locator;
    ComPtr<IWbemServices> wmi;
    ComPtr<IEnumWbemClassObject> instances;
    ComPtr<IWbemClassObject> definition;
};

struct Row {
    std::string call;
    // Makes the call and sets `empty` if every output was cleared.
    std::function<HRESULT(FaultClient&, bool& empty)> make;
};

template <typename Interface, typename Make>
HRESULT IntoPointer(bool& empty, Make make) {
    Interface* out = Poison<Interface>();
    const HRESULT result = make(&out);
    empty = out == nullptr;
    return result;
}

template <typename Record, typename Make>
HRESULT IntoArray(bool& empty, Make make) {
    Record* array = Poison<Record>();
    LONG count = 9;
    const HRESULT result = make(&array, &count);
    empty = array == nullptr && count == 0;
    return result;
}

const std::vector<Row>& Rows() {
    static const std::vector<Row> rows = {
        {"CoCreateInstance",
         [](FaultClient&, bool& empty) {
             return IntoPointer<void>(empty, [](void** out) {
                 return CoCreateInstance(CLSID_VdsLoader, nullptr, CLSCTX_ALL, IID_IUnknown, out);
             });
         }},
        {"CoInitializeEx", [](FaultClient&, bool&) { return CoInitializeEx(nullptr, COINIT_MULTITHREADED); }},
        {"CoInitializeSecurity",
         [](FaultClient&, bool&) {
             return CoInitializeSecurity(nullptr, -1, nullptr, nullptr, 0, 3, nullptr, 0, nullptr);
         }},
        {"CoSetProxyBlanket",
         [](FaultClient& client, bool&) {
             return CoSetProxyBlanket(client.wmi.Get(), 10, 0, nullptr, 3, 3, nullptr, 0);
         }},
        {"IUnknown::QueryInterface",
         [](FaultClient& client, bool& empty) {
             return IntoPointer<void>(
                 empty, [&](void** out) { return client.disk->QueryInterface(IID_IVdsAdvancedDisk, out); });
         }},
        {"IEnumVdsObject::Next",
         [](FaultClient& client, bool& empty) {
             ULONG fetched = 9;
             const HRESULT result = IntoPointer<IUnknown>(
                 empty, [&](IUnknown** out) { return client.list->Next(1, out, &fetched); });
             empty = empty && fetched == 0;
             return result;
         }},
        {"IVdsAdvancedDisk2::ChangePartitionType",
         [](FaultClient& client, bool&) {
             CHANGE_PARTITION_TYPE_PARAMETERS parameters{};
             parameters.style = VDS_PST_MBR;
             parameters.MbrPartInfo.partitionType = 7;
             return client.advanced2->ChangePartitionType(client.Offset(), TRUE, &parameters);
         }},
        {"IVdsAdvancedDisk::AssignDriveLetter",
         [](FaultClient& client, bool&) {
             return client.advanced->AssignDriveLetter(client.Offset(), TEXT('R'));
         }},
        {"IVdsAdvancedDisk::ChangeAttributes",
         [](FaultClient& client, bool&) {
             CHANGE_ATTRIBUTES_PARAMETERS parameters{};
             parameters.style = VDS_PST_MBR;
             parameters.MbrPartInfo.bootIndicator = 1;
             return client.advanced->ChangeAttributes(client.Offset(), &parameters);
         }},
        {"IVdsAdvancedDisk::DeleteDriveLetter",
         [](FaultClient& client, bool&) {
             return client.advanced->DeleteDriveLetter(client.Offset(), TEXT('R'));
         }},
        {"IVdsAdvancedDisk::GetDriveLetter",
         [](FaultClient& client, bool& untouched) {
             WCHAR letter = TEXT('?');
             const HRESULT result = client.advanced->GetDriveLetter(client.Offset(), &letter);
             untouched = letter == TEXT('?');
             return result;
         }},
        {"IVdsAdvancedDisk::QueryPartitions",
         [](FaultClient& client, bool& empty) {
             return IntoArray<VDS_PARTITION_PROP>(empty, [&](VDS_PARTITION_PROP** out, LONG* count) {
                 return client.advanced->QueryPartitions(out, count);
             });
         }},
        {"IVdsDisk::GetProperties",
         [](FaultClient& client, bool& empty) {
             VDS_DISK_PROP properties{};
             properties.pwszName = Poison<WCHAR>();
             const HRESULT result = client.disk->GetProperties(&properties);
             empty = properties.pwszName == nullptr;
             return result;
         }},
        {"IVdsDisk::QueryExtents",
         [](FaultClient& client, bool& empty) {
             return IntoArray<VDS_DISK_EXTENT>(empty, [&](VDS_DISK_EXTENT** out, LONG* count) {
                 return client.disk->QueryExtents(out, count);
             });
         }},
        {"IVdsProvider::GetProperties",
         [](FaultClient& client, bool& empty) {
             VDS_PROVIDER_PROP properties{};
             properties.pwszName = Poison<WCHAR>();
             const HRESULT result = client.described->GetProperties(&properties);
             empty = properties.pwszName == nullptr && properties.ulFlags == 0;
             return result;
         }},
        {"IVdsPack::GetProperties",
         [](FaultClient& client, bool& empty) {
             VDS_PACK_PROP properties{};
             properties.pwszName = Poison<WCHAR>();
             const HRESULT result = client.pack->GetProperties(&properties);
             empty = properties.pwszName == nullptr && properties.status == VDS_PS_UNKNOWN;
             return result;
         }},
        {"IVdsPack::QueryDisks",
         [](FaultClient& client, bool& empty) {
             return IntoPointer<IEnumVdsObject>(
                 empty, [&](IEnumVdsObject** out) { return client.pack->QueryDisks(out); });
         }},
        {"IVdsService::GetObject",
         [](FaultClient& client, bool& empty) {
             return IntoPointer<IUnknown>(empty, [&](IUnknown** out) {
                 return client.service->GetObject(GUID_NULL, VDS_OT_DISK, out);
             });
         }},
        {"IVdsService::IsServiceReady",
         [](FaultClient& client, bool&) { return client.service->IsServiceReady(); }},
        {"IVdsService::QueryProviders",
         [](FaultClient& client, bool& empty) {
             return IntoPointer<IEnumVdsObject>(
                 empty, [&](IEnumVdsObject** out) { return client.service->QueryProviders(1, out); });
         }},
        {"IVdsService::QueryUnallocatedDisks",
         [](FaultClient& client, bool& empty) {
             return IntoPointer<IEnumVdsObject>(
                 empty, [&](IEnumVdsObject** out) { return client.service->QueryUnallocatedDisks(out); });
         }},
        {"IVdsService::WaitForServiceReady",
         [](FaultClient& client, bool&) { return client.service->WaitForServiceReady(); }},
        {"IVdsServiceLoader::LoadService",
         [](FaultClient& client, bool& empty) {
             return IntoPointer<IVdsService>(
                 empty, [&](IVdsService** out) { return client.loader->LoadService(nullptr, out); });
         }},
        {"IVdsSwProvider::QueryPacks",
         [](FaultClient& client, bool& empty) {
             return IntoPointer<IEnumVdsObject>(
                 empty, [&](IEnumVdsObject** out) { return client.provider->QueryPacks(out); });
         }},
        {"IVdsVolumeMF::GetFileSystemProperties",
         [](FaultClient& client, bool& empty) {
             VDS_FILE_SYSTEM_PROP properties{};
             properties.pwszLabel = Poison<WCHAR>();
             const HRESULT result = client.volume->GetFileSystemProperties(&properties);
             empty = properties.pwszLabel == nullptr;
             return result;
         }},
        {"IEnumWbemClassObject::Next",
         [](FaultClient& client, bool& empty) {
             ULONG returned = 9;
             const HRESULT result = IntoPointer<IWbemClassObject>(empty, [&](IWbemClassObject** out) {
                 return client.instances->Next(-1, 1, out, &returned);
             });
             empty = empty && returned == 0;
             return result;
         }},
        {"IWbemClassObject::Get",
         [](FaultClient& client, bool& untouched) {
             VARIANT value;
             V_VT(&value) = VT_I4;
             const HRESULT result = client.definition->Get(TEXT("DeviceID"), 0, &value, nullptr, nullptr);
             untouched = V_VT(&value) == VT_I4;
             return result;
         }},
        {"IWbemClassObject::GetMethod",
         [](FaultClient& client, bool& empty) {
             IWbemClassObject* outputs = Poison<IWbemClassObject>();
             const HRESULT result = IntoPointer<IWbemClassObject>(empty, [&](IWbemClassObject** inputs) {
                 return client.definition->GetMethod(TEXT("Reset"), 0, inputs, &outputs);
             });
             empty = empty && outputs == nullptr;
             return result;
         }},
        {"IWbemClassObject::Put",
         [](FaultClient& client, bool&) {
             VARIANT value;
             V_VT(&value) = VT_NULL;
             return client.definition->Put(TEXT("DeviceID"), 0, &value, 0);
         }},
        {"IWbemClassObject::SpawnInstance",
         [](FaultClient& client, bool& empty) {
             return IntoPointer<IWbemClassObject>(
                 empty, [&](IWbemClassObject** out) { return client.definition->SpawnInstance(0, out); });
         }},
        {"IWbemLocator::ConnectServer",
         [](FaultClient& client, bool& empty) {
             return IntoPointer<IWbemServices>(empty, [&](IWbemServices** out) {
                 return client.locator->ConnectServer(client.className.Get(), nullptr, nullptr, nullptr, 0,
                                                      nullptr, nullptr, out);
             });
         }},
        {"IWbemServices::CreateInstanceEnum",
         [](FaultClient& client, bool& empty) {
             return IntoPointer<IEnumWbemClassObject>(empty, [&](IEnumWbemClassObject** out) {
                 return client.wmi->CreateInstanceEnum(client.className.Get(), 48, nullptr, out);
             });
         }},
        {"IWbemServices::ExecMethod",
         [](FaultClient& client, bool& empty) {
             return IntoPointer<IWbemClassObject>(empty, [&](IWbemClassObject** out) {
                 return client.wmi->ExecMethod(client.className.Get(), client.className.Get(), 0, nullptr,
                                               nullptr, out, nullptr);
             });
         }},
        {"IWbemServices::GetObject",
         [](FaultClient& client, bool& empty) {
             return IntoPointer<IWbemClassObject>(empty, [&](IWbemClassObject** out) {
                 return client.wmi->GetObject(client.className.Get(), 0, nullptr, out, nullptr);
             });
         }},
    };
    return rows;
}

void ExpectInjected(const Row& row, uint32_t code) {
    FaultClient client;
    const Loans before = client.pc.ledger.Outstanding();
    client.pc.journal.Clear();
    client.pc.faults.Arm({row.call, 1, false, false, code});
    bool outputsAsExpected = true;
    EXPECT_EQ(row.make(client, outputsAsExpected), static_cast<HRESULT>(code)) << row.call;
    EXPECT_TRUE(outputsAsExpected) << row.call;
    EXPECT_EQ(client.pc.ledger.Outstanding(), before) << row.call;
    const std::vector<machine::CallRecord> calls = client.pc.journal.Calls();
    ASSERT_EQ(calls.size(), 1u) << row.call;
    EXPECT_EQ(calls[0].call, row.call);
    EXPECT_TRUE(calls[0].injected);
}

}  // namespace

TEST(InjectedFault, EveryCall_ReturnsTheCodeAndClearsOutputs) {
    for (const Row& row : Rows())
        ExpectInjected(row, 0x80004005);
}

TEST(InjectedSuccess, EveryCall_ReturnsSuccessAndClearsOutputs) {
    for (const Row& row : Rows())
        ExpectInjected(row, 0);
}

TEST(InjectedFault, EveryCall_HasARow) {
    std::map<std::string, int> rows;
    for (const Row& row : Rows())
        ++rows[row.call];
    for (const machine::CallInfo& info : machine::AllCalls()) {
        if (info.failsWith != machine::FailsWith::Hresult) continue;
        EXPECT_EQ(rows[std::string(info.name)], 1) << info.name;
    }
}
