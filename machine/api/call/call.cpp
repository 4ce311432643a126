#include "machine/api/call/call.h"

#include "base/hexadecimal.h"

namespace machine {

std::string Hex(uint64_t value) {
    return ::Hex(value, 8, HexDigits::Lower);
}

}  // namespace machine
