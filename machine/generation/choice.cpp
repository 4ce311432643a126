#include "machine/generation/choice.h"

namespace machine {

Choice::Choice(uint64_t seed, uint64_t number) : numbers_(0) {
    const auto high = [](uint64_t value) { return static_cast<uint32_t>(value >> 32); };
    const auto low = [](uint64_t value) { return static_cast<uint32_t>(value); };
    std::seed_seq words = {high(seed), low(seed), high(number), low(number)};
    numbers_.seed(words);
}

}  // namespace machine
