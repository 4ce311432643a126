// The status of a PC, read through the library and the platform.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/kestova/operations/session.h"

class Questions;

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
    std::optional<int> slot;  // in the table of an image
    std::optional<std::string> gptName;
    bool hidden = false;                   // by an MBR type with the hidden bit, or the attribute of a GPT
    std::optional<std::string> condition;  // of its volume, one of volume_condition; nothing if unknown
};

// Space of a disk that is no partition's.
struct Gap {
    int64_t offset = 0;  // bytes
    int64_t size = 0;    // bytes
};

struct DiskReport {
    int number = 0;
    std::optional<std::string> bus = {};  // in words
    std::optional<std::string> model = {};
    std::optional<std::string> serial = {};
    std::optional<int64_t> size = {};        // bytes
    std::optional<int64_t> sectorSize = {};  // bytes
    std::optional<std::string> style = {};   // "MBR", "GPT", "none"
    // By its bus, as the service's list counts; nothing if that is unknown.
    std::optional<bool> isInternal = {};
    std::string reason = {};                       // why, in words
    std::vector<PartitionReport> partitions = {};  // in table order; label, file system also without a letter
    std::vector<Gap> gaps = {};                    // in their order on the disk
};

// The record of the partition that was active before the recovery partition.
struct RecordReport {
    int partition = 0;  // that holds it, or would
    bool exists = false;
    std::optional<int> recorded = {};  // nothing without a number in it
    // The partition that `boot system` makes active; nothing if it changes none.
    std::optional<int> bootSystem = {};
    std::string words = {};  // what it holds, and where `boot system` would go
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
    std::vector<DiskReport> disks;  // all, in the order of their numbers
    std::optional<RecordReport> record;
    std::vector<Finding> remarks;  // on the internal disk
    std::string problem;           // what could not be read; else empty
};

// An entry of a table, without its volume.
PartitionReport PartitionOf(const PARTITION_INFORMATION_EX& entry);

// Adds letter, label and file system; of an unreadable or locked volume the condition.
void AddVolume(int disk, PartitionReport& partition, Questions& questions);

// Calls Initialize first on request. Leaves the PC unchanged.
StatusReport ReadStatus(Session& session, bool initialize);
