#include "diag/framework_binding/module_app.h"

#include <afxdllx.h>

#include "diag/module.h"

namespace {

// The library's own module state. The library creates no windows; the framework's window procedure fills the
// argument.
AFX_MODULE_STATE ownState(TRUE, AfxWndProc, _MFC_VER);

// The application object registers itself in the state that is current during its construction.
AFX_MODULE_STATE* const hostState = AfxSetModuleState(&ownState);
CModuleApp theApp;
[[maybe_unused]] AFX_MODULE_STATE* const stateOfTheApp = AfxSetModuleState(hostState);

AFX_EXTENSION_MODULE extensionModule;

// A load that fails with the application has ended it; the loader reports the unload nevertheless.
bool applicationEnded = false;

void ReleaseTemporaryMaps() {
    AfxLockTempMaps();
    AfxUnlockTempMaps(TRUE);
}

BOOL StartApplication(HINSTANCE instance) {
    static TCHAR noCommandLine[] = TEXT("");
    const ModuleContext context;
    AfxCoreInitModule();
    if (!AfxWinInit(instance, nullptr, noCommandLine, 0)) return FALSE;
    CWinApp* const application = AfxGetApp();
    applicationEnded = !application->InitInstance();
    if (applicationEnded) {
        application->ExitInstance();
        AfxWinTerm();
    }
    return !applicationEnded;
}

// FALSE if there is no memory for the record, which the framework owns until the module is unloaded.
BOOL LinkIntoHost() {
    try {
        new CDynLinkLibrary(extensionModule);
        return TRUE;
        // NOLINTNEXTLINE(misc-throw-by-value-catch-by-reference): the framework throws by pointer.
    } catch (CMemoryException* exception) {
        exception->Delete();
        return FALSE;
    }
}

// The record is added to the chain of the current module, which must be the host application's again by then.
BOOL Load(HINSTANCE instance) {
    return StartApplication(instance) && AfxInitExtensionModule(extensionModule, instance) && LinkIntoHost();
}

void StopApplication() {
    const ModuleContext context;
    if (!applicationEnded) AfxGetApp()->ExitInstance();
    ReleaseTemporaryMaps();
    if (!applicationEnded) AfxWinTerm();
}

void Unload() {
    StopApplication();
    AfxTermExtensionModule(extensionModule);
}

void EndThread(HINSTANCE instance) {
    const ModuleContext context;
    ReleaseTemporaryMaps();
    AfxTermThread(instance);
}

}  // namespace

BOOL CModuleApp::InitInstance() {
    CWinApp::InitInstance();
    return TRUE;
}

ModuleContext::ModuleContext() : previous_(AfxSetModuleState(&ownState)) {}

ModuleContext::~ModuleContext() {
    AfxSetModuleState(static_cast<AFX_MODULE_STATE*>(previous_));
}

bool ModuleContext::IsCurrent() {
    return AfxGetModuleState() == &ownState;
}

// The loader calls it for each of its four reasons, and after a failed load for the unload too. A new thread
// needs nothing.
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            return Load(instance);
        case DLL_PROCESS_DETACH:
            Unload();
            break;
        case DLL_THREAD_DETACH:
            EndThread(instance);
            break;
    }
    return TRUE;
}
