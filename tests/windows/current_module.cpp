// The library does not export its module binding, so a program cannot see which module is current.

#include "tests/faults/current_module.h"

void ExpectNoCurrentModule() {}
