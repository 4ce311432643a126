#include "diag/module.h"

namespace {

CModuleApp theApp;
thread_local const CModuleApp* currentModule = nullptr;

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

const CModuleApp* ModuleContext::Current() {
    return currentModule;
}
