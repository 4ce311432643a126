// The module that a call belongs to. Implemented by module_binding, or by framework_binding in a build with
// MFC.
#pragma once

// Makes the library's module current on this thread for one call, then restores the one that was current
// before.
class ModuleContext {
  public:
    ModuleContext();
    ~ModuleContext();
    ModuleContext(const ModuleContext&) = delete;
    ModuleContext& operator=(const ModuleContext&) = delete;

    // Whether the library's module is current: with the framework on this thread, else on any thread.
    static bool IsCurrent();

  private:
    // The framework's module state before the call.
    [[maybe_unused]] void* previous_ = nullptr;
};
