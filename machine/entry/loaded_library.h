// How a program's loader treats the library, whoever answers its platform calls: here the emulated PC.
#pragma once

#include <memory>

namespace machine {

// While it lives the library is loaded, and its platform calls and those of the program reach the emulated PC
// that lives now; one at a time. Where the calls were linked to the emulated PC it is the loader that calls
// the library's entry point; where Windows has loaded the library it redirects the calls.
class LoadedLibrary {
  public:
    // Throws std::runtime_error when the library refuses to be loaded, and naming each import that is neither
    // answered nor the C runtime's own.
    LoadedLibrary();
    ~LoadedLibrary();
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

  private:
    struct Inside;
    std::unique_ptr<Inside> inside_;
};

}  // namespace machine
