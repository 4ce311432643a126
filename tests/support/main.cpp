// Runs the tests as a program that has loaded the library.

#include <gtest/gtest.h>

#include "machine/entry/loaded_library.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const machine::LoadedLibrary library;
    return RUN_ALL_TESTS();
}
