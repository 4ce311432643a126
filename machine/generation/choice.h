// Numbers from a seed, the same on every machine and with every compiler: the distributions of the standard
// library are not.
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <random>

namespace machine {

class Choice {
  public:
    explicit Choice(uint64_t seed) : numbers_(seed) {}
    // The numbers of one of the PCs of a seed, without making those before it.
    Choice(uint64_t seed, uint64_t number);

    // Of the limit's type: an index is a size_t, which is narrower than the numbers where addresses have 32 bits.
    template <std::integral Limit>
    Limit Below(Limit limit) {
        return static_cast<Limit>(numbers_() % static_cast<uint64_t>(limit));
    }
    bool OneIn(uint64_t chances) { return Below(chances) == 0; }
    template <typename T>
    T OneOf(std::initializer_list<T> choices) {
        return choices.begin()[Below(choices.size())];
    }

  private:
    std::mt19937_64 numbers_;
};

}  // namespace machine
