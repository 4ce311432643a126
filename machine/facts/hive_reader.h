// The interface to a reader of registry hive files, for hives on a disk image. The hives of described
// volumes are in the description.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/facts/registry_keys.h"

namespace machine {

struct HiveFile {
    std::string content = {};
    std::string owner = {};  // in notes: "disk.img: the registry of partition 2"
    // The content of the file beside it whose name has this at its end; empty if it cannot be read. May be
    // null.
    std::function<std::string(std::string_view suffix)> beside = {};
};

// Returned codes are the platform's error codes; 0 is success.
class HiveReader {
  public:
    virtual ~HiveReader() = default;
    // Of the keys below the root of a hive those that the library reads, with their values: "MountedDevices",
    // if it exists; and the root itself, without values, as the empty path. Error 1009 if it is not a hive,
    // or is damaged there; `keys` is then unchanged.
    virtual uint32_t Read(HiveFile file, RegistryKeys& keys) = 0;
    // What the user should know about the state in which the hives were found, with their owner in front,
    // each once.
    virtual std::vector<std::string> Notes() const = 0;
};

}  // namespace machine
