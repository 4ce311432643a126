// Runs the tests as a program that has loaded the library.

#include <gtest/gtest.h>

#include "platform/windows_api.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr)) return 2;
    const int result = RUN_ALL_TESTS();
    DllMain(nullptr, DLL_PROCESS_DETACH, nullptr);
    return result;
}
