// Puts functions between the library and whoever answers its platform calls.
#pragma once

#include <memory>
#include <span>

#include "machine/entry/answered_call.h"

namespace machine {

// While it exists, those platform calls of the library go to the given functions; the program's own calls are
// not touched where they are made by the chosen names. Only one may exist at a time, during the lifetime of
// what answered the calls before.
class RedirectedCalls {
  public:
    // The calls are sorted by name. Throws std::runtime_error where the library's imports cannot be
    // redirected, and for a name that is no answered call.
    explicit RedirectedCalls(std::span<const AnsweredCall> calls);
    ~RedirectedCalls();
    RedirectedCalls(const RedirectedCalls&) = delete;
    RedirectedCalls& operator=(const RedirectedCalls&) = delete;

  private:
    struct Inside;
    std::unique_ptr<Inside> inside_;
};

}  // namespace machine
