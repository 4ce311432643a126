// The header is C and C++ for each compiler that applications have.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

class CHeader : public ProgramTest, public testing::WithParamInterface<const char*> {};

TEST_P(CHeader, CompiledAlone_HasNoWarning) {
    const Outcome outcome =
        Shell("clang++ -fsyntax-only -Wall -Wextra -Wpedantic -Werror " + std::string(GetParam()) +
              " -I '" KESTOVA_SOURCE_FOLDER "' '" KESTOVA_SOURCE_FOLDER "/kestova/kestova_c.h'");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
}

INSTANTIATE_TEST_SUITE_P(Each, CHeader,
                         testing::Values("-x c-header -std=c89", "-x c-header -std=c11",
                                         "-x c++-header -std=c++98", "-x c++-header -std=c++20",
                                         "-x c-header -std=c89 --target=x86_64-pc-windows-msvc",
                                         "-x c-header -std=c89 --target=i686-pc-windows-msvc",
                                         "-x c++-header -std=c++20 --target=x86_64-pc-windows-msvc",
                                         "-x c++-header -std=c++20 --target=i686-pc-windows-msvc"));

}  // namespace
