#include "diag/module.h"

#include <gtest/gtest.h>

#include <latch>
#include <thread>

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

// The calls overlap: the one that began first ends while the other runs.
TEST(ModuleContext, TwoThreadsInside_ModuleIsCurrentOnBothUntilTheLastLeaves) {
    std::latch bothInside(2);
    std::latch checked(1);
    std::thread second([&] {
        const ModuleContext context;
        bothInside.arrive_and_wait();
        checked.wait();
    });
    {
        const ModuleContext context;
        bothInside.arrive_and_wait();
        EXPECT_TRUE(ModuleContext::IsCurrent());
    }
    EXPECT_TRUE(ModuleContext::IsCurrent());
    checked.count_down();
    second.join();
    EXPECT_FALSE(ModuleContext::IsCurrent());
}

// So many calls that two of them change the mark at the same time.
TEST(ModuleContext, TwoThreadsWithManyCalls_NoCallIsLost) {
    constexpr int calls = 2'000'000;
    std::latch bothReady(2);
    const auto callOften = [&] {
        bothReady.arrive_and_wait();
        for (int call = 0; call < calls; ++call)
            const ModuleContext context;
    };
    std::thread second(callOften);
    callOften();
    second.join();
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
