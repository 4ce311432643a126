// The registry hive of an installed Windows.
#include "fuzz/patched_image.h"
#include "machine/media/device/little_endian.h"
#include "machine/media/hive/hivex_reader.h"

using namespace machine;

namespace {

// The sum of the header, over the 127 numbers before it.
void RepairHeader(PatchedImage& image) {
    uint32_t sum = 0;
    for (size_t at = 0; at < 508; at += 4)
        sum ^= Le32(image.Bytes(), at);
    std::string bytes;
    AppendLe64(bytes, sum);
    image.Put(508, std::string_view(bytes).substr(0, 4));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static PatchedImage base("hive", RepairHeader);
    FuzzedDataProvider input(data, size);
    base.Ask(input, [](const std::string&) {
        RegistryKeys keys;
        HivexReader().Read({std::string(base.Bytes())}, keys);
    });
    return 0;
}
