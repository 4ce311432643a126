// Platform calls are linked to the emulated PC; only the entry point has to be called.

#include "machine/entry/loaded_library.h"

#include <stdexcept>

#include "platform/windows_api.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

namespace machine {

struct LoadedLibrary::Inside {};

LoadedLibrary::LoadedLibrary() {
    if (!DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr))
        throw std::runtime_error("the library refused to be loaded");
}

LoadedLibrary::~LoadedLibrary() {
    DllMain(nullptr, DLL_PROCESS_DETACH, nullptr);
}

}  // namespace machine
