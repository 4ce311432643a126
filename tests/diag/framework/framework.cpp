// The framework's stand-in.

#include <new>
#include <utility>

#include "tests/diag/framework/recording.h"

namespace {

thread_local AFX_MODULE_STATE* currentState = nullptr;

void Record(const std::string& call) {
    const char* const state = AfxGetModuleState() == &HostState() ? "host: " : "own: ";
    Recording().calls.push_back(state + call);
}

std::string Number(const void* address) {
    return std::to_string(reinterpret_cast<uintptr_t>(address));
}

}  // namespace

FrameworkRecording& Recording() {
    static FrameworkRecording recording;
    return recording;
}

AFX_MODULE_STATE& HostState() {
    static AFX_MODULE_STATE state(FALSE, AfxWndProc, _MFC_VER);
    return state;
}

// --- state ---

AFX_MODULE_STATE::AFX_MODULE_STATE(BOOL isDll, WNDPROC windowProcedure, DWORD version, BOOL isSystem)
    : m_bDLL(static_cast<BYTE>(isDll)),
      m_bSystem(static_cast<BYTE>(isSystem)),
      m_dwVersion(version),
      m_pfnAfxWndProc(windowProcedure) {}

AFX_MODULE_STATE* AFXAPI AfxGetModuleState() {
    return currentState != nullptr ? currentState : &HostState();
}

AFX_MODULE_STATE* AFXAPI AfxSetModuleState(AFX_MODULE_STATE* state) {
    return std::exchange(currentState, state);
}

CWinApp* AFXAPI AfxGetApp() {
    return AfxGetModuleState()->m_pCurrentWinApp;
}

// --- the application object ---

CWinApp::CWinApp(LPCTSTR name) : state_(AfxGetModuleState()) {
    Record(name == nullptr ? "CWinApp without a name" : "CWinApp with a name");
    state_->m_pCurrentWinApp = this;
}

CWinApp::~CWinApp() {
    Record("~CWinApp");
    if (state_->m_pCurrentWinApp == this) state_->m_pCurrentWinApp = nullptr;
}

BOOL CWinApp::InitInstance() {
    Record("CWinApp::InitInstance");
    return FALSE;
}

int CWinApp::ExitInstance() {
    Record("CWinApp::ExitInstance");
    return 0;
}

// --- the framework ---

void AFXAPI AfxCoreInitModule() {
    Record("AfxCoreInitModule");
}

BOOL AFXAPI AfxWinInit(HINSTANCE instance, HINSTANCE previous, LPTSTR commandLine, int show) {
    const bool empty = *commandLine == 0 && previous == nullptr && show == 0;
    Record("AfxWinInit " + Number(instance) + (empty ? " without command line" : " with more"));
    return Recording().failure != FrameworkFailure::WinInit;
}

void AFXAPI AfxWinTerm() {
    Record("AfxWinTerm");
}

void AFXAPI AfxTermThread(HINSTANCE instance) {
    Record("AfxTermThread " + Number(instance));
}

void AFXAPI AfxLockTempMaps() {
    Record("AfxLockTempMaps");
}

BOOL AFXAPI AfxUnlockTempMaps(BOOL deleteTemporaries) {
    Record(deleteTemporaries ? "AfxUnlockTempMaps and delete" : "AfxUnlockTempMaps");
    return TRUE;
}

LRESULT CALLBACK AfxWndProc(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

// --- extension modules ---

BOOL AFXAPI AfxInitExtensionModule(AFX_EXTENSION_MODULE& descriptor, HMODULE module) {
    Record("AfxInitExtensionModule " + Number(module));
    descriptor = {TRUE, module};
    return Recording().failure != FrameworkFailure::ExtensionInit;
}

void AFXAPI AfxTermExtensionModule(AFX_EXTENSION_MODULE& descriptor, BOOL all) {
    Record("AfxTermExtensionModule " + Number(descriptor.hModule) + (all ? " and all others" : ""));
    AFX_MODULE_STATE& state = *AfxGetModuleState();
    if (state.m_libraryList != nullptr && state.m_libraryList->m_hModule == descriptor.hModule)
        delete std::exchange(state.m_libraryList, nullptr);
    descriptor.bInitialized = FALSE;
}

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& descriptor, BOOL) : m_hModule(descriptor.hModule) {
    Record("CDynLinkLibrary " + Number(m_hModule));
    AfxGetModuleState()->m_libraryList = this;
}

void* CDynLinkLibrary::operator new(size_t size) {
    // NOLINTNEXTLINE(misc-throw-by-value-catch-by-reference): as the framework does.
    if (Recording().failure == FrameworkFailure::RecordAllocation) throw new CMemoryException;
    return ::operator new(size);
}

void CDynLinkLibrary::operator delete(void* record) {
    ::operator delete(record);
}

void CMemoryException::Delete() {
    Record("CMemoryException::Delete");
    delete this;
}
