#include "tools/kestova/process/confinement.h"

bool FiltersSystemCalls() {
    return false;
}

void ConfineAtStart() {}

void ConfineTo(const ConfinedWork&) {}
