// COM on the calling thread.
#pragma once

#include "platform/windows_api.h"

// Initialises COM, multithreaded, and uninitialises it at the end of the scope if that succeeded. Inline:
// where CoInitializeEx is a macro, every source of the program that includes this must define it alike.
class ComApartment {
  public:
    ComApartment() : result_(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {}
    ~ComApartment() {
        if (SUCCEEDED(result_)) CoUninitialize();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

    // S_FALSE if the thread had initialised COM before; a failure code if COM cannot be used.
    HRESULT Result() const { return result_; }

  private:
    HRESULT result_;
};
