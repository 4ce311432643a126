// The description of a PC. One that is read is written so that it reads back as the same PC.
#include <cstdint>
#include <cstdlib>

#include "machine/description/description.h"

using namespace machine;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    try {
        const Pc pc = ReadDescription(text, "pc.json");
        if (!(ReadDescription(WriteDescription(pc), "written.json") == pc)) std::abort();
    } catch (const DescriptionError&) {
        // A refusal is an answer.
    }
    return 0;
}
