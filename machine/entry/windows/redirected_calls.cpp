// Windows has loaded the library: its import table is written.

#include "machine/entry/redirected_calls.h"

#include "machine/entry/windows/import_table.h"

namespace machine {

struct RedirectedCalls::Inside {
    explicit Inside(std::span<const AnsweredCall> calls)
        : imports(GetModuleHandleW(TEXT("Kestova.dll")), calls, OtherImports::StayWithWindows) {}

    ImportTable imports;
};

RedirectedCalls::RedirectedCalls(std::span<const AnsweredCall> calls)
    : inside_(std::make_unique<Inside>(calls)) {}

RedirectedCalls::~RedirectedCalls() = default;

}  // namespace machine
