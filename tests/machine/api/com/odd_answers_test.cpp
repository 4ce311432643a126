// Answers that a fault rule makes of a call's outputs: a failure that has written them, and a wrong count.
#include "machine/facts/machines.h"
#include "tests/machine/api/com/com_client.h"

using machine::EmulatedPc;

namespace {

constexpr uint32_t unspecified = 0x80004005;

ComPtr<IEnumVdsObject> UnallocatedDisksOf(IVdsService* service) {
    ComPtr<IEnumVdsObject> list;
    EXPECT_EQ(service->QueryUnallocatedDisks(list.Put()), S_OK);
    return list;
}

machine::Pc OneUnallocatedDisk() {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks[0].unallocated = true;
    return pc;
}

}  // namespace

TEST(InjectedFault, WithOutputs_FailsWithThemOnLoan) {
    ComClient client(OneUnallocatedDisk());
    const ComPtr<IVdsService> service = LoadVds();
    client.pc.faults.Arm(
        {.call = "IVdsService::QueryUnallocatedDisks", .code = unspecified, .withOutputs = true});
    ComPtr<IEnumVdsObject> list;
    EXPECT_EQ(service->QueryUnallocatedDisks(list.Put()), E_FAIL);
    ASSERT_TRUE(list);
    EXPECT_EQ(client.OnLoan(), (Loans{{"IVdsService", 1}, {"IEnumVdsObject", 1}}));
    EXPECT_TRUE(client.pc.journal.Calls("IVdsService::QueryUnallocatedDisks").at(0).injected);
}

TEST(InjectedFault, StatusWithOutputs_FailsWithThemFilled) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.faults.Arm({.call = "RegQueryValueExW", .code = ERROR_ACCESS_DENIED, .withOutputs = true});
    HKEY key = nullptr;
    ASSERT_EQ(
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("SYSTEM\\CurrentControlSet\\Control"), 0, KEY_READ, &key),
        ERROR_SUCCESS);
    WCHAR text[100] = {};
    DWORD size = sizeof text;
    EXPECT_EQ(RegQueryValueExW(key, TEXT("SystemStartOptions"), nullptr, nullptr,
                               reinterpret_cast<BYTE*>(text), &size),
              ERROR_ACCESS_DENIED);
    EXPECT_EQ(ToUtf8(text), *pc.facts.system.startOptions);
    RegCloseKey(key);
}

// There the outputs are the result itself.
TEST(InjectedFault, HandleOrMemoryWithOutputs_FailsWithNothing) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.faults.Arm({.call = "*", .code = ERROR_ACCESS_DENIED, .withOutputs = true});
    EXPECT_EQ(CreateFileW(TEXT("\\\\.\\C:"), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                          OPEN_EXISTING, 0, nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(SetupDiCreateDeviceInfoList(nullptr, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GlobalAlloc(GMEM_ZEROINIT, 8), nullptr);
    EXPECT_TRUE(pc.ledger.Outstanding().empty());
}

TEST(InjectedCount, NextOfTheDiskService_SaysItWhateverItReturned) {
    ComClient client(OneUnallocatedDisk());
    const ComPtr<IVdsService> service = LoadVds();
    const ComPtr<IEnumVdsObject> list = UnallocatedDisksOf(service.Get());
    client.pc.faults.Arm(
        {.call = "IEnumVdsObject::Next", .nth = 1, .code = 0, .withOutputs = true, .count = 2});
    client.pc.faults.Arm({.call = "IEnumVdsObject::Next", .nth = 2, .code = 0, .count = 1});
    ComPtr<IUnknown> disk;
    ULONG fetched = 0;
    EXPECT_EQ(list->Next(1, disk.Put(), &fetched), S_OK);
    EXPECT_TRUE(disk);
    EXPECT_EQ(fetched, 2u);
    EXPECT_EQ(list->Next(1, disk.Put(), &fetched), S_OK);
    EXPECT_FALSE(disk);
    EXPECT_EQ(fetched, 1u);
    EXPECT_EQ(list->Next(1, disk.Put(), nullptr), E_POINTER);
}

TEST(InjectedCount, NextOfWmi_SaysItWhateverItReturned) {
    ComClient client(machine::FactoryMbr());
    const ComPtr<IWbemServices> services = ConnectWmi();
    ComPtr<IEnumWbemClassObject> list;
    ASSERT_EQ(services->CreateInstanceEnum(SystemString("Win32_DiskDrive").Get(), 0, nullptr, list.Put()),
              S_OK);
    client.pc.faults.Arm(
        {.call = "IEnumWbemClassObject::Next", .nth = 1, .code = 0, .withOutputs = true, .count = 0});
    ComPtr<IWbemClassObject> disk;
    ULONG returned = 9;
    EXPECT_EQ(list->Next(static_cast<LONG>(WBEM_INFINITE), 1, disk.Put(), &returned), S_OK);
    EXPECT_TRUE(disk);
    EXPECT_EQ(returned, 0u);
}
