#include "tests/faults/current_module.h"

#include <gtest/gtest.h>

#include "diag/module.h"

void ExpectNoCurrentModule() {
    EXPECT_FALSE(ModuleContext::IsCurrent());
}
