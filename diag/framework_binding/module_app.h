// The module host with MFC: the library as an extension module of the host application's framework.
#pragma once

// The framework wants its own header before any other of the platform.
#include <afxwin.h>

// The library's one application object. It lives from load to unload, has no name and no fields of its own.
class CModuleApp : public CWinApp {
  public:
    CModuleApp() : CWinApp(nullptr) {}
    ~CModuleApp() override = default;

    // Calls the base; always TRUE.
    BOOL InitInstance() override;
};
