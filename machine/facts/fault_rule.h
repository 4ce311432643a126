// One line of a fault plan: which call fails, when, and with what.
#pragma once

#include <cstdint>
#include <string>

namespace machine {

struct FaultRule {
    std::string call;      // the published name: "CreateFileW", "IVdsAdvancedDisk::ChangeAttributes"
    uint32_t nth = 0;      // the how-manieth call of that name, from 1; 0: every call
    bool onwards = false;  // and all later ones
    bool afterEffect =
        false;          // the call does its work first; only calls that change the PC tell the difference
    uint32_t code = 0;  // what it answers: a result code, a last error, or the value itself

    bool operator==(const FaultRule&) const = default;
};

}  // namespace machine
