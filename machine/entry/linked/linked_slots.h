// The pointers through which the linked calls go, by name.
#pragma once

#include <span>
#include <string_view>

namespace machine {

struct LinkedSlot {
    std::string_view name;
    void* pointer;  // where the pointer is
};

// Sorted by name, each once. They point to the emulated PC's functions until somebody writes others there.
std::span<const LinkedSlot> LinkedSlots();

}  // namespace machine
