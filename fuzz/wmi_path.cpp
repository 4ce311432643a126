// Paths of WMI objects, as the library and the emulated PC read them, and a chain of controllers made of
// them.
#include <fuzzer/FuzzedDataProvider.h>

#include "base/utf.h"
#include "device/controller_path.h"
#include "machine/api/wmi/path.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    tagControllerLinkTable_t links;
    links.nCount = input.ConsumeIntegralInRange<int>(0, 6);
    WideString last;
    for (int link = 0; link < links.nCount; ++link) {
        for (auto* const side : {&links.Antecedent, &links.Dependent}) {
            const std::string path = input.ConsumeRandomLengthString(128);
            machine::NamespaceOf(path);
            if (const auto read = machine::ReadWmiPath(path)) read->Names(path);
            last = ToWide(path);
            (*side)[link] = last;
        }
    }
    FindTopController(ExtractPathValue(last), links);
    return 0;
}
