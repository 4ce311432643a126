// Location texts, which come from the drivers of ports.
#include <cstdint>
#include <string>

#include "base/utf.h"
#include "device/disk_location.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const WideString text = ToWide({reinterpret_cast<const char*>(data), size});
    int target = 0;
    ReadLocation(text.c_str(), target);
    return 0;
}
