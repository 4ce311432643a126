#include "machine/api/call/call.h"

#include "base/hexadecimal.h"

namespace machine {

std::string Hex(uint64_t value) {
    return ::Hex(value, 8, HexDigits::Lower);
}

void NoteUnshown(const std::string& call, std::vector<std::string> arguments) {
    const Turn turn;
    EmulatedPc::Current().journal.AddUnshown(call, std::move(arguments));
}

}  // namespace machine
