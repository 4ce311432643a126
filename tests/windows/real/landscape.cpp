#include "tests/windows/real/landscape.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <utility>

void EmptyDrives() {
    for (const std::string drive : {"E:/", "F:/", "R:/", "U:/"})
        for (const char* made : {"sources", "boot", "Orvo", "Bootmgr", "SystemVolume.ini"})
            std::filesystem::remove_all(drive + made);
    std::filesystem::remove("C:/windows/system32/Winload.exe");
}

void MakeFile(const std::filesystem::path& path) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary);
}

std::string Contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void MakeRecoveryFiles(const std::string& drive, const std::string& kind) {
    MakeFile(drive + "/sources/Qelhdrcv.ini");
    for (const char* folder : {"Orvo", "data", "idf"})
        std::filesystem::create_directories(drive + "/sources/" + folder);
    if (!kind.empty()) std::filesystem::create_directories(drive + "/sources/" + kind);
}

// --- registry ---

std::vector<BYTE> RegistryValue::Read(const std::wstring& key, const std::wstring& name) {
    DWORD size = 0;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), name.c_str(), RRF_RT_ANY, nullptr, nullptr, &size) !=
        ERROR_SUCCESS)
        return {};
    std::vector<BYTE> data(size);
    RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), name.c_str(), RRF_RT_ANY, nullptr, data.data(), &size);
    return data;
}

RegistryValue::RegistryValue(std::wstring key, std::wstring name, DWORD type, std::vector<BYTE> data)
    : key_(std::move(key)), name_(std::move(name)), former_(Read(key_, name_)), formerType_(type) {
    EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, key_.c_str(), name_.c_str(), type, data.data(),
                              static_cast<DWORD>(data.size())),
              ERROR_SUCCESS);
}

RegistryValue::~RegistryValue() {
    if (former_.empty()) {
        RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, key_.c_str(), name_.c_str());
        return;
    }
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, key_.c_str(), name_.c_str(), formerType_, former_.data(),
                    static_cast<DWORD>(former_.size()));
}

// --- reg ---

RegTool::RegTool(const std::string& prepared) : path_(32'767, L'\0') {
    std::filesystem::create_directory("C:/tools");
    std::filesystem::remove("C:/tools/reg.log");
    std::ofstream("C:/tools/reg.bat")
        << "@echo %*>>C:\\tools\\reg.log\n"
        << "@if %1==load C:\\windows\\system32\\reg.exe copy HKLM\\" << prepared << " %2 /s /f\n"
        << "@if %1==unload C:\\windows\\system32\\reg.exe delete %2 /f\n";
    path_.resize(GetEnvironmentVariableW(L"PATH", path_.data(), static_cast<DWORD>(path_.size())));
    EXPECT_TRUE(SetEnvironmentVariableW(L"PATH", (L"C:\\tools;" + path_).c_str()));
}

RegTool::~RegTool() {
    EXPECT_TRUE(SetEnvironmentVariableW(L"PATH", path_.c_str()));
}

std::string RegTool::Asked() const {
    return Contents("C:/tools/reg.log");
}

// --- devices ---

RegisteredDisk::RegisteredDisk(const std::wstring& id, const std::wstring& location) {
    constexpr GUID diskDrives = {
        0x4d36e967, 0xe325, 0x11ce, {0xbf, 0xc1, 0x08, 0x00, 0x2b, 0xe1, 0x03, 0x18}};
    set_ = SetupDiCreateDeviceInfoList(&diskDrives, nullptr);
    device_.cbSize = sizeof(device_);
    EXPECT_TRUE(SetupDiCreateDeviceInfoW(set_, id.c_str(), &diskDrives, nullptr, nullptr, 0, &device_));
    EXPECT_TRUE(SetupDiRegisterDeviceInfo(set_, &device_, 0, nullptr, nullptr, nullptr));
    EXPECT_TRUE(SetupDiSetDeviceRegistryPropertyW(set_, &device_, SPDRP_LOCATION_INFORMATION,
                                                  reinterpret_cast<const BYTE*>(location.c_str()),
                                                  static_cast<DWORD>((location.size() + 1) * sizeof(WCHAR))));
}

RegisteredDisk::~RegisteredDisk() {
    EXPECT_TRUE(SetupDiRemoveDevice(set_, &device_));
    EXPECT_TRUE(SetupDiDestroyDeviceInfoList(set_));
}
