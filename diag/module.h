// Which module a call belongs to. The module host, one of the folders beside this file, answers it.
#pragma once

// Makes the library's module current on this thread for one call and restores what was current before.
class ModuleContext {
  public:
    ModuleContext();
    ~ModuleContext();
    ModuleContext(const ModuleContext&) = delete;
    ModuleContext& operator=(const ModuleContext&) = delete;

    // Whether the library's module is current: on this thread with the framework, else on any.
    static bool IsCurrent();

  private:
    // What the framework had current before.
    [[maybe_unused]] void* previous_ = nullptr;
};
