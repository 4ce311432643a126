#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;
using testing::ElementsAre;
using testing::Pair;

namespace {

constexpr const WCHAR* controlKey = u"SYSTEM\\CurrentControlSet\\Control";

machine::Pc PcWithRegistry() {
    machine::Pc pc = machine::FactoryMbr();
    pc.registry["HKLM\\SYSTEM\\MountedDevices"]["\\DosDevices\\C:"] = {REG_BINARY,
                                                                       std::string("\x01\0\x02", 3)};
    return pc;
}

HKEY Open(const WCHAR* path, HKEY parent = HKEY_LOCAL_MACHINE) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(parent, path, 0, KEY_READ, &key), ERROR_SUCCESS) << ToUtf8(path);
    return key;
}

}  // namespace

TEST(RegOpenKey, KeysAndTheirParents_Open) {
    EmulatedPc pc(PcWithRegistry());
    SetLastError(staleError);
    for (const WCHAR* const path :
         {u"SYSTEM\\MountedDevices", u"system\\mounteddevices\\", u"SYSTEM", u"", controlKey}) {
        const HKEY key = Open(path);
        EXPECT_THAT(pc.ledger.Outstanding(), ElementsAre(Pair("registry key", 1)));
        EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    }
    const HKEY system = Open(u"SYSTEM");
    const HKEY below = Open(u"MountedDevices", system);
    EXPECT_EQ(RegCloseKey(below), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(system), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(HKEY_LOCAL_MACHINE), ERROR_SUCCESS);
    EXPECT_EQ(GetLastError(), staleError);
    ExpectCleanLedger(pc);
}

TEST(RegOpenKey, InvalidArguments_FailWithTheirError) {
    EmulatedPc pc(PcWithRegistry());
    HKEY key = HKEY_USERS;
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"SYSTEM\\Mounted", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(key, nullptr);
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"SYSTEM", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegOpenKeyExW(nullptr, u"SYSTEM", 0, KEY_READ, &key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"SYSTEM", 0, KEY_READ, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"SYSTEM", 1, KEY_READ, &key), ERROR_INVALID_PARAMETER);
    FailNext(pc, "RegOpenKeyExW", ERROR_ACCESS_DENIED);
    key = HKEY_USERS;
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"SYSTEM", 0, KEY_READ, &key), ERROR_ACCESS_DENIED);
    EXPECT_EQ(key, nullptr);
    ExpectCleanLedger(pc);
}

TEST(RegQueryValue, TwoCalls_ReturnSizeThenBytes) {
    EmulatedPc pc(PcWithRegistry());
    const HKEY key = Open(u"SYSTEM\\MountedDevices");
    DWORD type = 0;
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExW(key, u"\\dosdevices\\c:", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(type, DWORD{REG_BINARY});
    EXPECT_EQ(size, 3u);
    BYTE data[3] = {9, 9, 9};
    size = 2;
    EXPECT_EQ(RegQueryValueExW(key, u"\\DosDevices\\C:", nullptr, nullptr, data, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(data[0], 9);
    EXPECT_EQ(RegQueryValueExW(key, u"\\DosDevices\\C:", nullptr, nullptr, data, &size), ERROR_SUCCESS);
    EXPECT_THAT(data, ElementsAre(1, 0, 2));
    RegCloseKey(key);
    ExpectCleanLedger(pc);
}

TEST(RegQueryValue, InvalidArguments_FailWithTheirError) {
    EmulatedPc pc(PcWithRegistry());
    const HKEY key = Open(u"SYSTEM\\MountedDevices");
    HKEY writing = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"SYSTEM\\MountedDevices", 0, KEY_SET_VALUE, &writing);
    BYTE data[3];
    DWORD size = 3;
    EXPECT_EQ(RegQueryValueExW(key, u"none", nullptr, nullptr, data, &size), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegQueryValueExW(key, u"\\DosDevices\\C:", nullptr, nullptr, data, nullptr),
              ERROR_INVALID_PARAMETER);
    DWORD reserved = 0;
    EXPECT_EQ(RegQueryValueExW(key, u"\\DosDevices\\C:", &reserved, nullptr, data, &size),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryValueExW(writing, u"\\DosDevices\\C:", nullptr, nullptr, data, &size),
              ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegQueryValueExW(nullptr, u"\\DosDevices\\C:", nullptr, nullptr, data, &size),
              ERROR_INVALID_HANDLE);
    FailNext(pc, "RegQueryValueExW", ERROR_BADKEY);
    EXPECT_EQ(RegQueryValueExW(key, u"\\DosDevices\\C:", nullptr, nullptr, data, &size), ERROR_BADKEY);
    RegCloseKey(key);
    RegCloseKey(writing);
    ExpectCleanLedger(pc);
}

TEST(RegQueryValue, StartOptions_AreTheRunningSystems) {
    EmulatedPc pc(machine::WinPeTwoDisks());
    pc.facts.registry["HKLM\\SYSTEM\\CurrentControlSet\\Control"]["SystemStartOptions"] = {REG_SZ, "other"};
    const HKEY key = Open(controlKey);
    WCHAR text[500] = {};
    DWORD size = sizeof text;
    DWORD type = 0;
    EXPECT_EQ(
        RegQueryValueExW(key, u"SystemStartOptions", nullptr, &type, reinterpret_cast<BYTE*>(text), &size),
        ERROR_SUCCESS);
    EXPECT_EQ(ToUtf8(text), " FASTDETECT MININT");
    EXPECT_EQ(type, DWORD{REG_SZ});
    EXPECT_EQ(size, 2 * 19u);
    pc.facts.system.startOptions.reset();
    EXPECT_EQ(RegQueryValueExW(key, u"SystemStartOptions", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 2 * 6u);
    pc.facts.registry.clear();
    EXPECT_EQ(RegQueryValueExW(key, u"SystemStartOptions", nullptr, nullptr, nullptr, nullptr),
              ERROR_FILE_NOT_FOUND);
    RegCloseKey(key);
    ExpectCleanLedger(pc);
}

TEST(RegCloseKey, ClosedKey_SecondCloseIsAViolation) {
    EmulatedPc pc(PcWithRegistry());
    const HKEY key = Open(u"SYSTEM");
    RegCloseKey(key);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_THAT(pc.ledger.Violations(), ElementsAre("registry key closed that is not open"));
}

TEST(RegCloseKey, FaultBeforeOrAfterEffect_KeepsOrClosesTheKey) {
    for (const bool afterEffect : {false, true}) {
        EmulatedPc pc(PcWithRegistry());
        const HKEY key = Open(u"SYSTEM");
        FailNext(pc, "RegCloseKey", ERROR_BADKEY, afterEffect);
        EXPECT_EQ(RegCloseKey(key), ERROR_BADKEY);
        EXPECT_EQ(pc.ledger.Outstanding().empty(), afterEffect);
    }
}

// The hive of a described volume.
TEST(RegLoadKey, HiveOfAnotherWindows_IsMountedUntilItIsUnmounted) {
    EmulatedPc pc(machine::WinPeMedia());
    constexpr const WCHAR* hive = u"C:\\Windows\\System32\\config\\SYSTEM";
    EXPECT_EQ(RegLoadKeyW(HKEY_LOCAL_MACHINE, u"OTHER", hive), ERROR_SUCCESS);
    EXPECT_THAT(pc.ledger.Outstanding(), ElementsAre(Pair("mounted hive", 1)));
    const HKEY key = Open(u"OTHER\\MountedDevices");
    EXPECT_EQ(RegQueryValueExW(key, u"\\DosDevices\\E:", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegLoadKeyW(HKEY_LOCAL_MACHINE, u"OTHER", hive), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegUnLoadKeyW(HKEY_LOCAL_MACHINE, u"OTHER"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegUnLoadKeyW(HKEY_LOCAL_MACHINE, u"OTHER"), ERROR_SUCCESS);
    EXPECT_EQ(RegUnLoadKeyW(HKEY_LOCAL_MACHINE, u"OTHER"), ERROR_FILE_NOT_FOUND);
    ExpectCleanLedger(pc);
    EXPECT_EQ(pc.facts, machine::WinPeMedia());
}

TEST(RegLoadKey, WrongFileMountOrParent_FailsWithItsError) {
    EmulatedPc pc(machine::FactoryMbr());
    constexpr const WCHAR* running = u"C:\\Windows\\System32\\config\\SYSTEM";
    EXPECT_EQ(RegLoadKeyW(HKEY_LOCAL_MACHINE, u"OTHER", running), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(RegLoadKeyW(HKEY_LOCAL_MACHINE, u"OTHER", u"C:\\none"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegLoadKeyW(HKEY_LOCAL_MACHINE, u"SYSTEM\\OTHER", running), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegLoadKeyW(HKEY_USERS, u"OTHER", running), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegUnLoadKeyW(HKEY_USERS, u"OTHER"), ERROR_INVALID_HANDLE);
    FailNext(pc, "RegLoadKeyW", ERROR_PRIVILEGE_NOT_HELD);
    EXPECT_EQ(RegLoadKeyW(HKEY_LOCAL_MACHINE, u"OTHER", running), ERROR_PRIVILEGE_NOT_HELD);
    FailNext(pc, "RegUnLoadKeyW", ERROR_PRIVILEGE_NOT_HELD);
    EXPECT_EQ(RegUnLoadKeyW(HKEY_LOCAL_MACHINE, u"OTHER"), ERROR_PRIVILEGE_NOT_HELD);
    ExpectCleanLedger(pc);
}
