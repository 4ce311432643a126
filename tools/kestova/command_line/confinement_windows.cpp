#include "tools/kestova/command_line/confinement.h"

#include "tools/kestova/command_line/system_calls.h"

bool FiltersSystemCalls() {
    return false;
}

void ConfineAtStart() {}

void ConfineTo(const ConfinedWork&) {}
