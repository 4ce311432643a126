// Reads registry hives through libhivex.
#pragma once

#include "machine/facts/hive_reader.h"

namespace machine {

class HivexReader final : public HiveReader {
  public:
    // Error 1009 also for a hive whose keys run in a circle or lie deeper than the platform allows. Bytes of
    // a text value that are no UTF-16 come out as "?".
    uint32_t Read(std::string_view file, RegistryKeys& keys) override;
};

}  // namespace machine
