// The objects behind the process handles of ShellExecuteExW.
#pragma once

#include <string>

#include "machine/api/call/handle_table.h"

namespace machine {

struct Process {
    static constexpr const char* kind = "process handle";
    std::string file;     // the file that was started
    uint64_t endsAt = 0;  // on the PC's clock, in milliseconds
};

using Processes = HandleTable<Process>;

}  // namespace machine
