// The library is linked to functions that go through pointers: these are written.

#include "machine/entry/redirected_calls.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "machine/entry/linked/linked_slots.h"

namespace machine {

namespace {

// Writes a pointer to a function, whatever its type.
const void* Exchange(void* pointer, const void* function) {
    const void* former = nullptr;
    std::memcpy(&former, pointer, sizeof former);
    std::memcpy(pointer, &function, sizeof function);
    return former;
}

struct Written {
    void* pointer;
    const void* former;
};

void* PointerOf(std::string_view call) {
    const auto slot = std::ranges::find(LinkedSlots(), call, &LinkedSlot::name);
    if (slot == LinkedSlots().end()) throw std::runtime_error("no such call: " + std::string(call));
    return slot->pointer;
}

}  // namespace

struct RedirectedCalls::Inside {
    std::vector<Written> written;
};

RedirectedCalls::RedirectedCalls(std::span<const AnsweredCall> calls) : inside_(std::make_unique<Inside>()) {
    for (const AnsweredCall& call : calls)
        inside_->written.push_back({PointerOf(call.name), call.function});
    for (Written& one : inside_->written)
        one.former = Exchange(one.pointer, one.former);
}

RedirectedCalls::~RedirectedCalls() {
    for (const Written& one : inside_->written)
        Exchange(one.pointer, one.former);
}

}  // namespace machine
