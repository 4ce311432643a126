// The interface to a reader of registry hive files, for hives on a disk image. The hives of described
// volumes are in the description.
#pragma once

#include <cstdint>
#include <string_view>

#include "machine/facts/registry_keys.h"

namespace machine {

// Returned codes are the platform's error codes; 0 is success.
class HiveReader {
  public:
    virtual ~HiveReader() = default;
    // Of the keys below the root of a hive those that the library reads, with their values: "MountedDevices",
    // if it exists; and the root itself, without values, as the empty path. `file` is the content of the hive
    // file. Error 1009 if it is not a hive, or is damaged there; `keys` is then unchanged.
    virtual uint32_t Read(std::string_view file, RegistryKeys& keys) = 0;
};

}  // namespace machine
