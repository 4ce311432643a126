#include "diag/reduced_host/module_app.h"

#include "diag/module.h"

namespace {

CModuleApp theApp;
thread_local void* currentModule = nullptr;

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

ModuleContext::ModuleContext() : previous_(currentModule) {
    currentModule = &theApp;
}

ModuleContext::~ModuleContext() {
    currentModule = previous_;
}

bool ModuleContext::IsCurrent() {
    return currentModule == &theApp;
}

// The loader calls it for each of its four reasons. Threads own nothing here.
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
