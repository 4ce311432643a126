#include "tests/support/print_pc.h"

#include <gtest/gtest.h>

#include "machine/description/description.h"

void machine::PrintTo(const Pc& pc, std::ostream* out) {
    *out << testing::PrintToString(WriteDescription(pc));
}
