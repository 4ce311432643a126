#include "base/text_case.h"
#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;
using testing::ElementsAre;
using testing::Pair;

namespace {

std::u16string DiskId(const EmulatedPc& pc) {
    return ToWide(*pc.facts.disks[0].wmi->pnpDeviceId);
}

SP_DEVINFO_DATA Element() {
    SP_DEVINFO_DATA element{};
    element.cbSize = sizeof element;
    return element;
}

}  // namespace

TEST(DeviceSetup, Location_IsReturnedInTwoCalls) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.facts.disks[0].location = std::string("Bus Number 0, Target Id 0, LUN 0");
    const HDEVINFO set = SetupDiCreateDeviceInfoList(nullptr, nullptr);
    EXPECT_THAT(pc.ledger.Outstanding(), ElementsAre(Pair("device info set", 1)));
    SP_DEVINFO_DATA element = Element();
    SetLastError(staleError);
    ASSERT_TRUE(SetupDiOpenDeviceInfoW(set, DiskId(pc).c_str(), nullptr, 0, &element));
    EXPECT_EQ(GetLastError(), staleError);

    DWORD required = 0;
    EXPECT_FALSE(SetupDiGetDeviceRegistryPropertyW(set, &element, SPDRP_LOCATION_INFORMATION, nullptr,
                                                   nullptr, 0, &required));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(required, 66u);
    WCHAR text[33];
    DWORD type = 0;
    SetLastError(staleError);
    EXPECT_TRUE(SetupDiGetDeviceRegistryPropertyW(set, &element, SPDRP_LOCATION_INFORMATION, &type,
                                                  reinterpret_cast<BYTE*>(text), required, nullptr));
    EXPECT_EQ(ToUtf8(text), "Bus Number 0, Target Id 0, LUN 0");
    EXPECT_EQ(type, DWORD{REG_SZ});
    EXPECT_TRUE(SetupDiDestroyDeviceInfoList(set));
    EXPECT_EQ(GetLastError(), staleError);
    ExpectCleanLedger(pc);
}

TEST(DeviceSetup, ControllersAndTheRoot_Open) {
    EmulatedPc pc(machine::FactoryMbr());
    const HDEVINFO set = SetupDiCreateDeviceInfoList(nullptr, nullptr);
    const std::u16string controller = ToWide(UpperCase(pc.facts.disks[0].controllers[0]));
    for (const WCHAR* const id : {controller.c_str(), u"", static_cast<const WCHAR*>(nullptr)}) {
        SP_DEVINFO_DATA element = Element();
        EXPECT_TRUE(SetupDiOpenDeviceInfoW(set, id, nullptr, 0, &element));
        EXPECT_FALSE(SetupDiGetDeviceRegistryPropertyW(set, &element, SPDRP_LOCATION_INFORMATION, nullptr,
                                                       nullptr, 0, nullptr));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_DATA});
    }
    EXPECT_TRUE(SetupDiOpenDeviceInfoW(set, u"", nullptr, 0, nullptr));
    SetupDiDestroyDeviceInfoList(set);
    ExpectCleanLedger(pc);
}

TEST(DeviceSetup, InvalidSetOrDevice_OpenFailsWithItsError) {
    EmulatedPc pc(machine::FactoryMbr());
    const HDEVINFO set = SetupDiCreateDeviceInfoList(nullptr, nullptr);
    SP_DEVINFO_DATA element = Element();
    EXPECT_FALSE(SetupDiOpenDeviceInfoW(set, u"IDE\\NONE", nullptr, 0, &element));
    EXPECT_EQ(GetLastError(), DWORD{0xE000020B});
    EXPECT_FALSE(SetupDiOpenDeviceInfoW(nullptr, u"", nullptr, 0, &element));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    constexpr DWORD unknownFlag = 1;
    EXPECT_FALSE(SetupDiOpenDeviceInfoW(set, u"", nullptr, unknownFlag, &element));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FLAGS});
    FailNext(pc, "SetupDiOpenDeviceInfoW", ERROR_ACCESS_DENIED);
    EXPECT_FALSE(SetupDiOpenDeviceInfoW(set, u"", nullptr, 0, &element));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    element.cbSize = 0;
    EXPECT_FALSE(SetupDiOpenDeviceInfoW(set, u"", nullptr, 0, &element));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_USER_BUFFER});
    pc.facts.disks[0].wmi.reset();
    SetupDiDestroyDeviceInfoList(set);
    ExpectCleanLedger(pc);
}

TEST(DeviceSetup, InvalidElementOrProperty_PropertyFailsWithItsError) {
    EmulatedPc pc(machine::FactoryMbr());
    const HDEVINFO set = SetupDiCreateDeviceInfoList(nullptr, nullptr);
    SP_DEVINFO_DATA element = Element();
    ASSERT_TRUE(SetupDiOpenDeviceInfoW(set, DiskId(pc).c_str(), nullptr, 0, &element));
    const auto errorOf = [](HDEVINFO devices, SP_DEVINFO_DATA* device, DWORD property) {
        DWORD required = 1;
        EXPECT_FALSE(
            SetupDiGetDeviceRegistryPropertyW(devices, device, property, nullptr, nullptr, 0, &required));
        EXPECT_EQ(required, 0u);
        return GetLastError();
    };
    SP_DEVINFO_DATA stranger = Element();
    EXPECT_EQ(errorOf(nullptr, &element, SPDRP_LOCATION_INFORMATION), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(errorOf(set, &stranger, SPDRP_LOCATION_INFORMATION), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(errorOf(set, nullptr, SPDRP_LOCATION_INFORMATION), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(errorOf(set, &element, SPDRP_DEVICEDESC), DWORD{ERROR_INVALID_DATA});
    EXPECT_EQ(errorOf(set, &element, SPDRP_MAXIMUM_PROPERTY), DWORD{0xE0000209});
    pc.facts.disks[0].location = machine::Fact<std::string>::Fails(ERROR_INVALID_DATA);
    EXPECT_EQ(errorOf(set, &element, SPDRP_LOCATION_INFORMATION), DWORD{ERROR_INVALID_DATA});
    FailNext(pc, "SetupDiGetDeviceRegistryPropertyW", ERROR_GEN_FAILURE);
    EXPECT_EQ(errorOf(set, &element, SPDRP_LOCATION_INFORMATION), DWORD{ERROR_GEN_FAILURE});
    SetupDiDestroyDeviceInfoList(set);
    ExpectCleanLedger(pc);
}

TEST(DeviceSetup, Fault_CreatesNoSet) {
    EmulatedPc pc(machine::FactoryMbr());
    FailNext(pc, "SetupDiCreateDeviceInfoList", ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(SetupDiCreateDeviceInfoList(nullptr, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ENOUGH_MEMORY});
    ExpectCleanLedger(pc);
}

TEST(DeviceSetup, DestroyedSet_SecondDestroyIsAViolation) {
    EmulatedPc pc(machine::FactoryMbr());
    const HDEVINFO set = SetupDiCreateDeviceInfoList(nullptr, nullptr);
    EXPECT_TRUE(SetupDiDestroyDeviceInfoList(set));
    EXPECT_FALSE(SetupDiDestroyDeviceInfoList(set));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_THAT(pc.ledger.Violations(), ElementsAre("device info set closed that is not open"));
}

TEST(DeviceSetup, FaultBeforeOrAfterEffect_KeepsOrDestroysTheSet) {
    for (const bool afterEffect : {false, true}) {
        EmulatedPc pc(machine::FactoryMbr());
        const HDEVINFO set = SetupDiCreateDeviceInfoList(nullptr, nullptr);
        FailNext(pc, "SetupDiDestroyDeviceInfoList", ERROR_GEN_FAILURE, afterEffect);
        EXPECT_FALSE(SetupDiDestroyDeviceInfoList(set));
        EXPECT_EQ(pc.ledger.Outstanding().empty(), afterEffect);
    }
}
