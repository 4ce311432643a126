// One rule of a fault plan: which call fails, when, and with which code.
#pragma once

#include <cstdint>
#include <string>

namespace machine {

struct FaultRule {
    std::string call;          // the published name: "CreateFileW", "IVdsAdvancedDisk::ChangeAttributes"
    uint32_t nth = 0;          // which call of that name fails, from 1; 0: every call
    bool onwards = false;      // and all later ones
    // Fails after doing its work. Matters only to calls that change the PC, and to a positive HRESULT, which
    // then comes with the outputs.
    bool afterEffect = false;
    uint32_t code = 0;  // a result code, a last error, or the returned value itself

    bool operator==(const FaultRule&) const = default;
};

}  // namespace machine
