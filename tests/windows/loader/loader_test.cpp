// The module as the loader of Windows sees it: what a load takes, an unload gives back.

#include <gtest/gtest.h>

#include "manager/kestova.h"
#include "platform/windows_api.h"
// The next one relies on the types of windows.h.
#include <psapi.h>

namespace {

constexpr const WCHAR* library = TEXT("Kestova.dll");

// Counted one by one, since Wine reports neither the number of a process's handles nor its private memory.
DWORD OpenHandles() {
    DWORD open = 0;
    for (uintptr_t value = 4; value < 0x4000; value += 4) {
        DWORD flags = 0;
        if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) open++;
    }
    return open;
}

DWORD LoadedModules() {
    HMODULE modules[1024];
    DWORD size = 0;
    EXPECT_TRUE(EnumProcessModules(GetCurrentProcess(), modules, sizeof(modules), &size));
    return size / DWORD{sizeof(HMODULE)};
}

// Bytes in use in all heaps.
SIZE_T HeapBytes() {
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    EXPECT_GT(count, 0U);
    EXPECT_LE(count, 64U);
    SIZE_T bytes = 0;
    for (DWORD i = 0; i < count; i++) {
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heaps[i], &entry))
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
    }
    return bytes;
}

// Bytes that are committed to this process alone.
SIZE_T PrivateBytes() {
    SIZE_T bytes = 0;
    MEMORY_BASIC_INFORMATION region = {};
    for (const char* at = nullptr; VirtualQuery(at, &region, sizeof(region)) == sizeof(region);
         at = static_cast<const char*>(region.BaseAddress) + region.RegionSize)
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += region.RegionSize;
    return bytes;
}

DWORD WINAPI Nothing(LPVOID) {
    return 0;
}

// A thread that begins and ends while the library is there: the loader notifies it of both.
void RunAThread() {
    const HANDLE thread = CreateThread(nullptr, 0, Nothing, nullptr, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(thread));
}

void LoadAndUnload() {
    const HMODULE module = LoadLibraryW(library);
    ASSERT_NE(module, nullptr) << GetLastError();
    EXPECT_EQ(GetModuleHandleW(library), module);
    RunAThread();
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_EQ(GetModuleHandleW(library), nullptr);
}

// A member of the class without arguments, under the name that the toolchain exports.
template <typename Result = void>
Result Call(HMODULE module, const char* member, Kestova& object) {
    const FARPROC address = GetProcAddress(module, member);
    EXPECT_NE(address, nullptr) << member;
    return reinterpret_cast<Result (*)(Kestova*)>(reinterpret_cast<void*>(address))(&object);
}

void LoadUseAndUnload() {
    const HMODULE module = LoadLibraryW(library);
    ASSERT_NE(module, nullptr) << GetLastError();
    alignas(Kestova) char memory[sizeof(Kestova)];
    auto& object = *reinterpret_cast<Kestova*>(memory);
    Call(module, "_ZN7KestovaC1Ev", object);
    EXPECT_EQ(Call<int>(module, "_ZN7Kestova9IsDynamicEv", object), 0);
    Call(module, "_ZN7KestovaD1Ev", object);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_EQ(GetModuleHandleW(library), nullptr);
}

// Expects that doing it a hundred times more leaves nothing behind.
void ExpectToKeepNothing(void (*use)()) {
    for (int times = 0; times < 10; times++)
        ASSERT_NO_FATAL_FAILURE(use());
    const DWORD handles = OpenHandles();
    const DWORD modules = LoadedModules();
    const SIZE_T heapBytes = HeapBytes();
    const SIZE_T privateBytes = PrivateBytes();
    for (int times = 0; times < 100; times++)
        ASSERT_NO_FATAL_FAILURE(use());
    EXPECT_EQ(OpenHandles(), handles);
    EXPECT_EQ(LoadedModules(), modules);
    EXPECT_EQ(HeapBytes(), heapBytes);
    EXPECT_LE(PrivateBytes(), privateBytes);
}

TEST(Loader, NoOtherUser_LoadAndUnloadAHundredTimes_KeepsNothing) {
    ExpectToKeepNothing(LoadAndUnload);
}

// The library is the last user of the logging library each time.
TEST(Loader, NoOtherUser_UseAnObjectAndUnload_KeepsNothing) {
    ExpectToKeepNothing(LoadUseAndUnload);
    EXPECT_EQ(GetModuleHandleW(TEXT("Logging.dll")), nullptr);
}

// The host has the logging library for its own records.
TEST(Loader, HostHasTheLoggingLibrary_UseAnObjectAndUnload_KeepsNothing) {
    const HMODULE logging = LoadLibraryW(TEXT("Logging.dll"));
    ASSERT_NE(logging, nullptr);
    ExpectToKeepNothing(LoadUseAndUnload);
    EXPECT_TRUE(FreeLibrary(logging));
}

TEST(Loader, LoadedTwice_UnloadOnce_StaysUntilItsLastUser) {
    const HMODULE first = LoadLibraryW(library);
    ASSERT_NE(first, nullptr);
    const HMODULE second = LoadLibraryW(library);
    EXPECT_EQ(second, first);
    EXPECT_TRUE(FreeLibrary(second));
    EXPECT_EQ(GetModuleHandleW(library), first);
    EXPECT_TRUE(FreeLibrary(first));
    EXPECT_EQ(GetModuleHandleW(library), nullptr);
}

}  // namespace
