#include "diag/module.h"

#include <gtest/gtest.h>

#include "diag/module_binding/module_app.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

namespace {

TEST(ModuleContext, Scope_MakesTheModuleCurrentAndRestoresTheOneBefore) {
    EXPECT_FALSE(ModuleContext::IsCurrent());
    {
        const ModuleContext outer;
        EXPECT_TRUE(ModuleContext::IsCurrent());
        {
            const ModuleContext inner;
            EXPECT_TRUE(ModuleContext::IsCurrent());
        }
        EXPECT_TRUE(ModuleContext::IsCurrent());
    }
    EXPECT_FALSE(ModuleContext::IsCurrent());
}

TEST(DllMain, EveryReason_Succeeds) {
    const HINSTANCE instance = reinterpret_cast<HINSTANCE>(0x10000);
    EXPECT_TRUE(DllMain(instance, DLL_PROCESS_ATTACH, nullptr));
    EXPECT_EQ(ModuleApp().Instance(), instance);
    EXPECT_TRUE(DllMain(instance, DLL_THREAD_ATTACH, nullptr));
    EXPECT_TRUE(DllMain(instance, DLL_THREAD_DETACH, nullptr));
    EXPECT_EQ(ModuleApp().Instance(), instance);
    EXPECT_TRUE(DllMain(instance, DLL_PROCESS_DETACH, nullptr));
    EXPECT_EQ(ModuleApp().Instance(), nullptr);
}

TEST(CModuleApp, Exit_Returns0) {
    EXPECT_EQ(ModuleApp().ExitInstance(), 0);
}

}  // namespace
