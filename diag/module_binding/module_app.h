// The module binding without the framework: what runs when a process loads and unloads the library.
#pragma once

#include "platform/windows_api.h"

// The library's only application object. It exists from load to unload; its only state is the module
// instance.
class CModuleApp {
  public:
    // Called at load: stores the module instance and returns TRUE.
    BOOL InitInstance(HINSTANCE instance);
    // Called at unload: clears the module instance and returns 0.
    int ExitInstance();
    // The module instance; null before load and after unload.
    HINSTANCE Instance() const { return instance_; }

  private:
    HINSTANCE instance_ = nullptr;
};

// The application object.
CModuleApp& ModuleApp();
