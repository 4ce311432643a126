// What became of a change of a disk image that was interrupted.
#pragma once

#include <optional>
#include <string>

struct RecoveryReport {
    std::string image;
    std::optional<std::string> change;  // "finished" or "takenBack"; nothing if there was none
    bool isDryRun = false;              // then it would be
};
