// Which module a call belongs to. The module host, one of the folders beside this file, answers it.
#pragma once

// Makes the library's module current on this thread for one call and restores what was current before.
class ModuleContext {
  public:
    ModuleContext();
    ~ModuleContext();
    ModuleContext(const ModuleContext&) = delete;
    ModuleContext& operator=(const ModuleContext&) = delete;

    // Whether the library's module is current on this thread.
    static bool IsCurrent();

  private:
    // What was current before, as the host knows it.
    void* previous_;
};
