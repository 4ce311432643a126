#include "machine/api/call/call.h"

namespace machine {

std::string Hex(uint64_t value) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%08llx", static_cast<unsigned long long>(value));
    return text;
}

}  // namespace machine
