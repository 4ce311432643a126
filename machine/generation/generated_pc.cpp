#include "machine/generation/generated_pc.h"

#include "machine/facts/machines.h"
#include "machine/generation/variations.h"
#include "machine/generation/wild_pc.h"

namespace machine {

namespace {

template <Pc (*make)()>
Pc Varied(Choice& choice) {
    Pc pc = make();
    Vary(pc, choice);
    return pc;
}

struct Kind {
    uint64_t percent;
    Pc (*make)(Choice& choice);
};

constexpr Kind kinds[] = {{30, Varied<FactoryMbr>},
                          {30, Varied<FactoryGpt>},
                          {15, Varied<WinPeTwoDisks>},
                          {15, Varied<WinPeMedia>},
                          {10, WildPc}};

}  // namespace

Pc RandomPc(Choice& choice) {
    uint64_t percent = choice.Below(100);
    const Kind* kind = kinds;
    for (; percent >= kind->percent; ++kind)
        percent -= kind->percent;
    Pc pc = kind->make(choice);
    pc.name.clear();
    return pc;
}

Pc GeneratedPc(uint64_t seed, uint64_t number) {
    Choice choice(seed, number);
    Pc pc = RandomPc(choice);
    pc.name = "generated " + std::to_string(seed) + "/" + std::to_string(number);
    return pc;
}

}  // namespace machine
