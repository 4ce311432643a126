// The files that are made from the table of operations are those that the table makes now.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

class MadeFiles : public ProgramTest {};

TEST_F(MadeFiles, Committed_AreWhatTheTableMakes) {
    const Outcome made = Shell("python3 '" KESTOVA_SOURCE_FOLDER "/scripts/bindings.py' '" KESTOVA_PROGRAM
                               "' '" KESTOVA_SOURCE_FOLDER "' made && find made -type f | sort");
    ASSERT_EQ(made.status, 0) << made.errors;
    EXPECT_THAT(made.output, testing::HasSubstr("made/kestova/kestova_c.h\n"));
    const Outcome compared =
        Shell("cd made && find . -type f -exec cmp '{}' '" KESTOVA_SOURCE_FOLDER "/{}' ';'");
    EXPECT_EQ(compared.output + compared.errors, "") << "./dev bindings makes them anew";
}

}  // namespace
