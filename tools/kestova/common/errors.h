// Exceptions that end the program; main maps each to its exit status.
#pragma once

#include <stdexcept>

enum ExitStatus : int {
    Done = 0,
    Failure = 1,
    WrongUseStatus = 2,
    UnreadablePcStatus = 3,
    OutputAbandoned = 141,  // as a shell shows a program that ended by a broken pipe
};

// The command line or a line of a script is wrong; nothing has been done.
struct WrongUse : std::runtime_error {
    using runtime_error::runtime_error;
};

// The PC that was named cannot be read; nothing has been changed.
struct UnreadablePc : std::runtime_error {
    using runtime_error::runtime_error;
};

// The request could not be carried out.
struct Failed : std::runtime_error {
    using runtime_error::runtime_error;
};
