// A shared library that is loaded only by a program that needs it.
#pragma once

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace machine {

// what() says which one, and its Debian package.
class LibraryMissing : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The address of a function, which takes the type of what it initialises.
class LateFunction {
  public:
    explicit LateFunction(void* address) : address_(address) {}
    template <typename Function>
    operator Function*() const {
        return reinterpret_cast<Function*>(address_);
    }

  private:
    void* address_;
};

// Stays loaded until the program ends: libraries have threads and handlers that outlive their users.
class LateLibrary {
  public:
    // `file` is what the loader searches for. Throws LibraryMissing.
    LateLibrary(const char* file, const char* package)
        : file_(file), library_(dlopen(file, RTLD_NOW | RTLD_LOCAL)) {
        if (library_ == nullptr)
            throw LibraryMissing(std::string("needs ") + file + " (package " + package +
                                 "), which is not installed or cannot be loaded");
    }

    // Throws LibraryMissing for a library of another version.
    LateFunction Function(const char* name) const {
        void* const address = dlsym(library_, name);
        if (address == nullptr) throw LibraryMissing(std::string(file_) + " lacks the function " + name);
        return LateFunction(address);
    }

  private:
    const char* file_;
    void* library_;
};

}  // namespace machine
