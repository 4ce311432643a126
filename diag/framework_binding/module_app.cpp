#include "diag/framework_binding/module_app.h"

#include <afxdllx.h>

#include "diag/module.h"

namespace {

// The library's own module state. It makes no windows, so the framework's procedure stands for theirs.
AFX_MODULE_STATE ownState(TRUE, AfxWndProc, _MFC_VER);

// The application object registers itself in the state that is current while it is made.
AFX_MODULE_STATE* const hostState = AfxSetModuleState(&ownState);
CModuleApp theApp;
[[maybe_unused]] AFX_MODULE_STATE* const stateOfTheApp = AfxSetModuleState(hostState);

AFX_EXTENSION_MODULE extensionModule;

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
    if (!application->InitInstance()) {
        application->ExitInstance();
        AfxWinTerm();
        return FALSE;
    }
    return TRUE;
}

// FALSE when there is no memory for the record. The framework owns it, until the module's end.
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

// The record goes into the chain of the module that is current, which must be the host again by then.
BOOL Load(HINSTANCE instance) {
    return StartApplication(instance) && AfxInitExtensionModule(extensionModule, instance) && LinkIntoHost();
}

void StopApplication() {
    const ModuleContext context;
    AfxGetApp()->ExitInstance();
    ReleaseTemporaryMaps();
    AfxWinTerm();
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

// The loader calls it for each of its four reasons. A thread that begins needs nothing. After a load that
// failed the loader calls it for the unload too.
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
