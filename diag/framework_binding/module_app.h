// The module binding with MFC: the library as an extension module of the host application's framework.
#pragma once

// The framework requires its header before any other of the platform.
#include <afxwin.h>

// The library's only application object. It exists from load to unload and has no name and no fields of its
// own.
class CModuleApp : public CWinApp {
  public:
    CModuleApp() : CWinApp(nullptr) {}
    ~CModuleApp() override = default;

    // Calls the base; always TRUE.
    BOOL InitInstance() override;
};
