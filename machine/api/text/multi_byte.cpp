// WideCharToMultiByte for the code pages of the emulated PC.

#include <algorithm>
#include <optional>

#include "machine/api/call/call.h"
#include "machine/api/text/ansi_code_page.h"
#include "machine/api/text/oem_code_page.h"

using namespace machine;

namespace {

std::optional<std::string> Converted(UINT codePage, WideView text) {
    switch (codePage) {
        case CP_ACP:
            return ToAnsi(text);
        case CP_OEMCP:
            return ToOem(text);
    }
    return std::nullopt;
}

}  // namespace

// The number of bytes written, or required if `capacity` is 0. A length of -1 converts up to and including
// the terminator. A character missing from the code page becomes "?". 0 with error 87 without a text and
// for code pages other than CP_ACP and CP_OEMCP, with 122 for a short buffer, which is left untouched.
extern "C" INT WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR text, INT length, LPSTR buffer,
                                          INT capacity, LPCSTR substitute, LPBOOL substituted) {
    std::vector<std::string> arguments = {std::to_string(codePage), std::to_string(length),
                                          std::to_string(capacity)};
    NoteUnshown("WideCharToMultiByte", [&] {
        return Arguments{Hex(flags), Presence(substitute), Presence(substituted)};
    });
    return Answer<INT>("WideCharToMultiByte", std::move(arguments), [&](EmulatedPc& pc) -> INT {
        const auto fail = [&](uint32_t error) {
            return Failure<INT>(pc, FailsWith::ZeroAndLastError, error);
        };
        if (text == nullptr || length == 0 || length < -1) return fail(ERROR_INVALID_PARAMETER);
        const size_t units = length == -1 ? WideView(text).size() + 1 : static_cast<size_t>(length);
        const std::optional<std::string> bytes = Converted(codePage, {text, units});
        if (!bytes) return fail(ERROR_INVALID_PARAMETER);
        const INT size = static_cast<INT>(bytes->size());
        if (capacity == 0) return size;
        if (buffer == nullptr || capacity < size) return fail(ERROR_INSUFFICIENT_BUFFER);
        std::copy(bytes->begin(), bytes->end(), buffer);
        return size;
    });
}
