// What ends the program early; main turns each into its exit status.
#pragma once

#include <stdexcept>

enum ExitStatus : int { Done = 0, Failure = 1, WrongUseStatus = 2, UnreadablePcStatus = 3 };

// The command line, or a line of a script, cannot be carried out as it stands.
struct WrongUse : std::runtime_error {
    using runtime_error::runtime_error;
};

// The PC that was named cannot be read; nothing has been changed.
struct UnreadablePc : std::runtime_error {
    using runtime_error::runtime_error;
};

// What was asked could not be done.
struct Failed : std::runtime_error {
    using runtime_error::runtime_error;
};
