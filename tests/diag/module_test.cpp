#include "diag/module.h"

#include <gtest/gtest.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

namespace {

TEST(ModuleContext, MakesTheModuleCurrentAndRestoresWhatWasBefore) {
    EXPECT_EQ(ModuleContext::Current(), nullptr);
    {
        const ModuleContext outer;
        EXPECT_EQ(ModuleContext::Current(), &ModuleApp());
        {
            const ModuleContext inner;
            EXPECT_EQ(ModuleContext::Current(), &ModuleApp());
        }
        EXPECT_EQ(ModuleContext::Current(), &ModuleApp());
    }
    EXPECT_EQ(ModuleContext::Current(), nullptr);
}

TEST(DllMain, LoadsThreadsAndUnloads) {
    const HINSTANCE instance = reinterpret_cast<HINSTANCE>(0x10000);
    EXPECT_TRUE(DllMain(instance, DLL_PROCESS_ATTACH, nullptr));
    EXPECT_EQ(ModuleApp().Instance(), instance);
    EXPECT_TRUE(DllMain(instance, DLL_THREAD_ATTACH, nullptr));
    EXPECT_TRUE(DllMain(instance, DLL_THREAD_DETACH, nullptr));
    EXPECT_EQ(ModuleApp().Instance(), instance);
    EXPECT_TRUE(DllMain(instance, DLL_PROCESS_DETACH, nullptr));
    EXPECT_EQ(ModuleApp().Instance(), nullptr);
}

TEST(CModuleApp, ExitAnswersZero) {
    EXPECT_EQ(ModuleApp().ExitInstance(), 0);
}

}  // namespace
