// The library as a program's loader treats it, on the emulated PC.
#pragma once

#include <memory>

namespace machine {

// While it exists, the library is loaded, and the platform calls of the library and of the program go to
// the current EmulatedPc. Only one may exist at a time. Where the calls are linked to the emulated PC, it
// calls the library's entry point; where Windows has loaded the library, it redirects the calls.
class LoadedLibrary {
  public:
    // Throws std::runtime_error if the library refuses to load, or with the name of each import that is
    // neither emulated nor the C runtime's own.
    LoadedLibrary();
    ~LoadedLibrary();
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

  private:
    struct Inside;
    std::unique_ptr<Inside> inside_;
};

}  // namespace machine
