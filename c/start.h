// What a handle needs beneath it: Windows has it; on Linux an emulated PC.
#pragma once

namespace c_interface {

// Throws Refusal with the reason.
void EnsureSystem();

}  // namespace c_interface
