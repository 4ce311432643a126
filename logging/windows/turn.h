// The turns of the programs that write logs at the same time.
#pragma once

#include "platform/windows_api.h"

// A mutex for all programs of the machine that administrators and the system run. Others cannot open it, and
// so cannot hold it against them; they write without turns.
class Turns {
  public:
    Turns();
    ~Turns();
    Turns(const Turns&) = delete;
    Turns& operator=(const Turns&) = delete;

  private:
    friend class Turn;
    HANDLE mutex_;  // null if it could not be made or opened
    DWORD patience_;
};

// Holds the mutex for its scope, if it was to be had. After a time-out, the next ones try without waiting
// until one succeeds.
class Turn {
  public:
    explicit Turn(Turns& turns);
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

  private:
    HANDLE held_;  // null without a turn
};
