// Scripts of the tool; none is run.
#include <cstdint>
#include <sstream>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/operations/script.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::istringstream script(std::string(reinterpret_cast<const char*>(data), size));
    try {
        ReadScript(script, "script");
    } catch (const WrongUse&) {
        // A refusal is an answer.
    }
    return 0;
}
