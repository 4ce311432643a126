// Reads registry hives through libhivex.
#pragma once

#include "machine/facts/hive_reader.h"

namespace machine {

class HivexReader final : public HiveReader {
  public:
    // Error 1009 also for a hive whose values together claim more bytes than it has. Damage elsewhere in the
    // hive does not matter. Invalid UTF-16 in a text value is read as "?".
    uint32_t Read(std::string_view file, RegistryKeys& keys) override;
};

}  // namespace machine
