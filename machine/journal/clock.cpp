#include "machine/journal/clock.h"

#include <utility>

namespace machine {

namespace {

struct Agenda {
    std::multimap<uint64_t, std::function<void(EmulatedPc&)>> actions;  // by the time they are due
};

}  // namespace

void Schedule(EmulatedPc& pc, uint64_t milliseconds, std::function<void(EmulatedPc&)> action) {
    pc.State<Agenda>().actions.emplace(pc.clockMilliseconds + milliseconds, std::move(action));
}

void AdvanceClock(EmulatedPc& pc, uint64_t milliseconds) {
    auto& actions = pc.State<Agenda>().actions;
    const uint64_t end = pc.clockMilliseconds + milliseconds;
    while (!actions.empty() && actions.begin()->first <= end) {
        const auto next = actions.extract(actions.begin());
        pc.clockMilliseconds = next.key();
        next.mapped()(pc);
    }
    pc.clockMilliseconds = end;
}

}  // namespace machine
