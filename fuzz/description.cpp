// The description of a PC. One that is read is written so that it reads back as the same PC; one that is
// refused has mistakes, and no other.
#include <cstdint>
#include <cstdlib>

#include "machine/description/description.h"

using namespace machine;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const bool isRight = FindMistakes(text).empty();
    try {
        const Pc pc = ReadDescription(text, "pc.json");
        if (!isRight || !(ReadDescription(WriteDescription(pc), "written.json") == pc)) std::abort();
    } catch (const DescriptionError&) {
        if (isRight) std::abort();
    }
    return 0;
}
