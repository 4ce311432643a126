#include "diag/module_binding/module_app.h"

#include <atomic>

#include "diag/module.h"

namespace {

CModuleApp theApp;

// Calls in progress, on all threads: some toolchains keep thread-local storage beyond the unload of the
// module.
std::atomic<int> callsRunning = 0;

}  // namespace

BOOL CModuleApp::InitInstance(HINSTANCE instance) {
    instance_ = instance;
    return TRUE;
}

int CModuleApp::ExitInstance() {
    instance_ = nullptr;
    return 0;
}

CModuleApp& ModuleApp() {
    return theApp;
}

ModuleContext::ModuleContext() {
    callsRunning++;
}

ModuleContext::~ModuleContext() {
    callsRunning--;
}

bool ModuleContext::IsCurrent() {
    return callsRunning > 0;
}

// The loader calls it for each of its four reasons. Nothing is kept for threads.
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            return ModuleApp().InitInstance(instance);
        case DLL_PROCESS_DETACH:
            ModuleApp().ExitInstance();
            break;
    }
    return TRUE;
}
