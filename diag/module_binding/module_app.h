// The module host without the framework: what runs when a process loads and unloads the library.
#pragma once

#include "platform/windows_api.h"

// The library's one application object. It lives from load to unload and has no state but what the hooks set
// up.
class CModuleApp {
  public:
    // Load hook: answers TRUE; the module instance is known from here on.
    BOOL InitInstance(HINSTANCE instance);
    // Unload hook: answers 0; the module instance is forgotten.
    int ExitInstance();
    // The module instance, or null outside load and unload.
    HINSTANCE Instance() const { return instance_; }

  private:
    HINSTANCE instance_ = nullptr;
};

// The application object.
CModuleApp& ModuleApp();
