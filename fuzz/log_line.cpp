// Records as lines: each is one line of text, whatever was recorded.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

#include "logging/log_line.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    LogEntry entry = {input.ConsumeIntegral<int>(), {}};
    while (input.remaining_bytes() > 0) {
        const std::string bytes = input.ConsumeRandomLengthString(64);
        std::basic_string<WCHAR> text(bytes.size() / sizeof(WCHAR), 0);
        bytes.copy(reinterpret_cast<char*>(text.data()), text.size() * sizeof(WCHAR));
        HighestLevel(text);
        entry.items.push_back({LogItemKind::Text, std::move(text)});
    }
    const std::string line = LogLine({}, entry);
    const size_t end = line.find_first_of(std::string_view("\r\n\0", 3));
    if (end != line.size() - 2 || !line.ends_with("\r\n")) std::abort();
    return 0;
}
