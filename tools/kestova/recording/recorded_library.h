// The library with a tape between it and the platform.
#pragma once

#include <span>

#include "machine/entry/redirected_calls.h"
#include "tools/kestova/recording/tape.h"

// The functions of the platform that pass by a tape, sorted by name. What the library asks besides concerns
// its own process and cannot differ.
std::span<const machine::AnsweredCall> TapedCalls();

// While it exists, the platform calls of the library pass by the tape. Only one may exist at a time, and
// every object of the library is made and destroyed during its lifetime.
class RecordedLibrary {
  public:
    // Throws std::runtime_error if the imports cannot be redirected.
    explicit RecordedLibrary(Tape& tape);
    ~RecordedLibrary();
    RecordedLibrary(const RecordedLibrary&) = delete;
    RecordedLibrary& operator=(const RecordedLibrary&) = delete;

  private:
    machine::RedirectedCalls calls_;
};
