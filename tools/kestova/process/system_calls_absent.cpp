// A build without libseccomp.

#include "tools/kestova/process/system_calls.h"

bool FiltersSystemCalls() {
    return false;
}

void AllowOnly(const std::vector<AllowedCall>&) {}
