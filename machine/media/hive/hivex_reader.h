// Reads registry hives through libhivex.
#pragma once

#include "machine/facts/hive_reader.h"

namespace machine {

// Loads libhivex and what it converts texts with, for a program that can load no code later. Throws
// LibraryMissing.
void LoadHivex();

class HivexReader final : public HiveReader {
  public:
    // A hive that was not closed is read with its transaction logs, or a note says why not. Error 1009 also
    // for a hive whose values together claim more bytes than it has. Damage elsewhere in the hive does not
    // matter. Invalid UTF-16 in a text value is read as "?". Throws LibraryMissing.
    uint32_t Read(HiveFile file, RegistryKeys& keys) override;
    std::vector<std::string> Notes() const override { return notes_; }

  private:
    void Replay(HiveFile& file);

    std::vector<std::string> notes_;
};

}  // namespace machine
