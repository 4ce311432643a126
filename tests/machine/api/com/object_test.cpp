// Identity, references and their ledger entries.
#include "machine/facts/machines.h"
#include "tests/machine/api/com/com_client.h"

TEST(QueryInterface, Disk_HasTheInterfacesOfDiskAndPartitions) {
    DiskClient client(machine::FactoryMbr());
    const ComPtr<IUnknown> identity = Ask<IUnknown>(client.disk.Get(), IID_IUnknown);
    EXPECT_EQ(Ask<IUnknown>(client.advanced.Get(), IID_IUnknown).Get(), identity.Get());
    EXPECT_EQ(Ask<IUnknown>(client.advanced2.Get(), IID_IUnknown).Get(), identity.Get());
    EXPECT_EQ(Ask<IVdsDisk>(identity.Get(), IID_IVdsDisk).Get(), client.disk.Get());
}

TEST(QueryInterface, UnknownInterface_Fails) {
    DiskClient client(machine::FactoryMbr());
    void* asked = client.disk.Get();
    EXPECT_EQ(client.disk->QueryInterface(IID_IVdsVolumeMF, &asked), E_NOINTERFACE);
    EXPECT_EQ(asked, nullptr);
    EXPECT_EQ(client.disk->QueryInterface(IID_IVdsDisk, nullptr), E_POINTER);
}

TEST(QueryInterface, AnyInterface_JournalsItsName) {
    DiskClient client(machine::FactoryMbr());
    client.pc.journal.Clear();
    Ask<IVdsAdvancedDisk2>(client.disk.Get(), IID_IVdsAdvancedDisk2);
    void* asked = nullptr;
    client.disk->QueryInterface(IID_IVdsVolumeMF, &asked);
    const std::vector<machine::CallRecord> calls = client.pc.journal.Calls("IUnknown::QueryInterface");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].arguments.front(), "IVdsAdvancedDisk2");
    EXPECT_EQ(calls[1].arguments.front(), "ee2d5ded-6236-4169-931d-b9778ce03dc6");
}

TEST(References, SeveralInterfaces_AreCountedByName) {
    DiskClient client(machine::FactoryMbr());
    EXPECT_EQ(
        client.OnLoan(),
        (Loans{{"IVdsAdvancedDisk", 1}, {"IVdsAdvancedDisk2", 1}, {"IVdsDisk", 1}, {"IVdsService", 1}}));
    EXPECT_EQ(client.disk->AddRef(), 2u);
    EXPECT_EQ(client.OnLoan()["IVdsDisk"], 2);
    EXPECT_EQ(client.disk->Release(), 1u);
    EXPECT_EQ(client.OnLoan()["IVdsDisk"], 1);
    EXPECT_TRUE(client.pc.ledger.Violations().empty());
}

TEST(References, ExtraRelease_IsAViolationWithTheInterface) {
    ComClient client(machine::WinPeTwoDisks());
    const ComPtr<IVdsService> service = LoadVds();
    const ComPtr<IVdsDisk> other =
        OpenDisk<IVdsDisk>(service.Get(), DiskId(service.Get(), "\\\\?\\PhysicalDrive1"), IID_IVdsDisk);
    ComPtr<IVdsDisk> held =
        OpenDisk<IVdsDisk>(service.Get(), DiskId(service.Get(), "\\\\?\\PhysicalDrive0"), IID_IVdsDisk);
    IVdsDisk* const disk = held.Detach();
    EXPECT_EQ(disk->Release(), 0u);
    EXPECT_EQ(disk->Release(), 0u);
    EXPECT_EQ(client.pc.ledger.Violations(), (std::vector<std::string>{"IVdsDisk released too often"}));
    EXPECT_EQ(client.OnLoan()["IVdsDisk"], 1) << "the reference to the other disk";
}

TEST(References, CallThroughReleasedInterface_IsAViolation) {
    ComClient client(machine::FactoryMbr());
    ComPtr<IVdsService> held = LoadVds();
    IVdsService* const service = held.Detach();
    service->Release();
    EXPECT_EQ(service->IsServiceReady(), S_OK);
    EXPECT_EQ(
        client.pc.ledger.Violations(),
        (std::vector<std::string>{"IVdsService::IsServiceReady called through a released IVdsService"}));
}

TEST(References, Leaked_StaysInTheLedger) {
    ComClient client(machine::FactoryMbr());
    ASSERT_NE(LoadVds().Detach(), nullptr);
    EXPECT_EQ(client.OnLoan(), (Loans{{"IVdsService", 1}}));
}
