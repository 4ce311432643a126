// Processes that each do one task of many and answer with a text. On Windows there are none.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

struct WorkerLimits {
    uint64_t atOnce = 1;
    std::chrono::seconds time{60};  // for a task
    bool mayBeEnded = true;         // in the middle of a task, if the program is interrupted
};

struct WorkerEnd {
    std::string answer;
    std::string problem;  // how it ended without an answer; empty with one
};

// Throws WrongUse on Windows.
void RequireWorkers();

// Does each task in a process of its own, several at once: `work` answers there. `take` is called here with
// the end of each, in the order of the tasks, of which only a bounded number waits for one before them. Call
// HoldInterruption before. Throws Failed, and Interrupted for a signal, when the processes have been ended,
// or have come to their ends.
void RunInWorkers(size_t tasks, const WorkerLimits& limits,
                  const std::function<std::string(size_t task)>& work,
                  const std::function<void(size_t task, const WorkerEnd& end)>& take);
