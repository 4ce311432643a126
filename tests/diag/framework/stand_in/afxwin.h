// A stand-in for the framework's header: exactly what the module binding uses of it, under the published
// names. It records each call.
#pragma once

#include "platform/windows_api.h"

#define AFXAPI __stdcall
#define _MFC_VER 0x0E00

class CDynLinkLibrary;
class CWinApp;

class AFX_MODULE_STATE {
  public:
    AFX_MODULE_STATE(BOOL isDll, WNDPROC windowProcedure, DWORD version, BOOL isSystem = FALSE);

    CWinApp* m_pCurrentWinApp = nullptr;
    CDynLinkLibrary* m_libraryList = nullptr;
    BYTE m_bDLL;
    BYTE m_bSystem;
    DWORD m_dwVersion;
    WNDPROC m_pfnAfxWndProc;
};

struct AFX_EXTENSION_MODULE {
    BOOL bInitialized;
    HMODULE hModule;
};

class CWinApp {
  public:
    explicit CWinApp(LPCTSTR name = nullptr);
    virtual ~CWinApp();
    virtual BOOL InitInstance();
    virtual int ExitInstance();

  private:
    // The state that was current when the object was made, which knows it as its application.
    AFX_MODULE_STATE* state_;
};

class CDynLinkLibrary {
  public:
    explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& descriptor, BOOL isSystem = FALSE);
    static void* operator new(size_t size);
    static void operator delete(void* record);

    HMODULE m_hModule;
};

class CMemoryException {
  public:
    void Delete();
};

AFX_MODULE_STATE* AFXAPI AfxGetModuleState();
// Answers the state that was current.
AFX_MODULE_STATE* AFXAPI AfxSetModuleState(AFX_MODULE_STATE* state);
CWinApp* AFXAPI AfxGetApp();

void AFXAPI AfxCoreInitModule();
BOOL AFXAPI AfxWinInit(HINSTANCE instance, HINSTANCE previous, LPTSTR commandLine, int show);
void AFXAPI AfxWinTerm();
void AFXAPI AfxTermThread(HINSTANCE instance = nullptr);
BOOL AFXAPI AfxInitExtensionModule(AFX_EXTENSION_MODULE& descriptor, HMODULE module);
void AFXAPI AfxTermExtensionModule(AFX_EXTENSION_MODULE& descriptor, BOOL all = FALSE);
void AFXAPI AfxLockTempMaps();
BOOL AFXAPI AfxUnlockTempMaps(BOOL deleteTemporaries = TRUE);
LRESULT CALLBACK AfxWndProc(HWND window, UINT message, WPARAM wide, LPARAM extra);
