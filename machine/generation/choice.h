// Numbers from a seed, the same on every machine and with every compiler: the distributions of the standard
// library are not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>

namespace machine {

class Choice {
  public:
    explicit Choice(uint64_t seed) : numbers_(seed) {}
    // The numbers of one of the PCs of a seed, without making those before it.
    Choice(uint64_t seed, uint64_t number);

    uint64_t Below(uint64_t limit) { return numbers_() % limit; }
    size_t IndexBelow(size_t count) { return static_cast<size_t>(Below(count)); }
    bool OneIn(uint64_t chances) { return Below(chances) == 0; }
    template <typename T>
    T OneOf(std::initializer_list<T> choices) {
        return choices.begin()[IndexBelow(choices.size())];
    }

  private:
    std::mt19937_64 numbers_;
};

}  // namespace machine
