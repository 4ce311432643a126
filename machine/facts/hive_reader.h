// How a registry hive in a file is read, when it is really one and not in the description: the door to a
// hive on a disk image.
#pragma once

#include <cstdint>
#include <string_view>

#include "machine/facts/registry_keys.h"

namespace machine {

// The codes are the platform's error codes; 0 is success.
class HiveReader {
  public:
    virtual ~HiveReader() = default;
    // The keys of a hive by their paths below its root ("MountedDevices"), keys without values too; the root
    // itself is the empty path. `file` is the whole content of the hive's file. Error 1009 when it is no
    // hive; `keys` is then as it was.
    virtual uint32_t Read(std::string_view file, RegistryKeys& keys) = 0;
};

}  // namespace machine
