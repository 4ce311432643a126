// Random PCs that a user could own: one to four disks with plausible partitions in any order, removable
// media, BitLocker, installed Windows or Windows PE.
#pragma once

#include <cstdint>
#include <random>

#include "machine/facts/pc.h"

namespace randomly {

// Numbers from a seed, the same on every machine.
class Choice {
  public:
    explicit Choice(uint64_t seed) : numbers_(seed) {}
    uint64_t Below(uint64_t limit) { return numbers_() % limit; }
    bool OneIn(uint64_t chances) { return Below(chances) == 0; }
    template <typename T>
    T OneOf(std::initializer_list<T> choices) {
        return choices.begin()[Below(choices.size())];
    }

  private:
    std::mt19937_64 numbers_;
};

machine::Pc RandomMachine(Choice& choice);

}  // namespace randomly
