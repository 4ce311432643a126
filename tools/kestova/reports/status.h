// The status of a PC, read through the library and the platform.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/kestova/operations/session.h"

// The purpose of a partition, and how it was recognised.
struct Role {
    const char* role;
    const char* reason;
};

struct PartitionReport {
    int number = 0;
    int64_t offset = 0;    // bytes
    int64_t size = 0;      // bytes
    std::string type;      // MBR ID, "0x27", or GUID
    std::string typeName;  // in words
    bool active = false;
    std::optional<WCHAR> letter;
    std::optional<std::string> label;       // none without a volume that can be read
    std::optional<std::string> fileSystem;  // the same
    bool hide = false;                      // not for the user's eyes
    std::vector<Role> roles;
};

// Where the installed Windows is.
struct WindowsPlace {
    int disk;
    int partition;
    WCHAR letter;
};

// Optional parts are empty where there is nothing of the kind, or it cannot be read.
struct StatusReport {
    std::string firmware;
    std::string system;  // that is running
    std::optional<std::string> windowsDirectory;
    std::optional<int> internalDisk;
    std::optional<std::string> style;
    std::optional<int> activePartition;
    bool isAllRead = true;                    // so far; if not, a missing number is unknown
    std::vector<PartitionReport> partitions;  // of the internal disk
    int layout = 0;
    std::string layoutName;                       // in words
    std::optional<std::string> encryptedVolumes;  // letters; none when BitLocker cannot be asked
    std::optional<WCHAR> recoveryDisc;
    std::optional<WCHAR> recoveryStick;
    bool cachePartition = false;  // of the second internal disk
    std::optional<WindowsPlace> windows;
    std::vector<Finding> remarks;  // on the internal disk
    std::string problem;           // what could not be read; else empty
};

// Calls Initialize first on request. Leaves the PC unchanged.
StatusReport ReadStatus(Session& session, bool initialize);
