// What is on the drives, in the registry and among the devices of the prefix while a test runs.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/windows_api.h"

// Takes away what tests put onto the drives.
void EmptyDrives();

// Makes an empty file and the folders above it.
void MakeFile(const std::filesystem::path& path);

// The bytes of a file; nothing when there is none.
std::string Contents(const std::filesystem::path& path);

// The maker's recovery files on a drive, and the folder that identifies the kind of medium.
void MakeRecoveryFiles(const std::string& drive, const std::string& kind = "");

// A value below HKEY_LOCAL_MACHINE; its former self, or nothing, is restored.
class RegistryValue {
  public:
    RegistryValue(std::wstring key, std::wstring name, DWORD type, std::vector<BYTE> data);
    ~RegistryValue();
    RegistryValue(const RegistryValue&) = delete;
    RegistryValue& operator=(const RegistryValue&) = delete;

    // Empty when there is none.
    static std::vector<BYTE> Read(const std::wstring& key, const std::wstring& name);

  private:
    std::wstring key_;
    std::wstring name_;
    std::vector<BYTE> former_;
    DWORD formerType_ = REG_NONE;
};

// The `reg` that batch files find: it mounts a prepared key in place of any hive, takes it away again, and
// notes what it was asked. Wine's own cannot load hives.
class RegTool {
  public:
    // The key below HKEY_LOCAL_MACHINE that a load copies.
    explicit RegTool(const std::string& prepared);
    ~RegTool();
    RegTool(const RegTool&) = delete;
    RegTool& operator=(const RegTool&) = delete;

    // Its arguments, a line a call.
    std::string Asked() const;

  private:
    std::wstring path_;
};

// A disk that device set-up knows, with its location text.
class RegisteredDisk {
  public:
    RegisteredDisk(const std::wstring& id, const std::wstring& location);
    ~RegisteredDisk();
    RegisteredDisk(const RegisteredDisk&) = delete;
    RegisteredDisk& operator=(const RegisteredDisk&) = delete;

  private:
    HDEVINFO set_;
    SP_DEVINFO_DATA device_ = {};
};
