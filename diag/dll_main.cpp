// The module's entry point: the loader calls it once for each of the four reasons.

#include "diag/module.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            return ModuleApp().InitInstance(instance);
        case DLL_PROCESS_DETACH:
            ModuleApp().ExitInstance();
            break;
    }
    // Threads own nothing here.
    return TRUE;
}
