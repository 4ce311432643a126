// Calls that change a disk, made on one that the user has named, and taken back.
#pragma once

#include "tools/kestova/probes/probes.h"
#include "tools/kestova/probes/trial_disk.h"

// A question that the documents leave open, and its answer.
struct OpenAnswer {
    std::string key;  // of the switch that says the same in a description; empty if there is none
    std::string question;
    std::string value;  // as the description writes it, or in words; empty if it could not be found out
    std::string why;    // it could not
};

struct DiskTrial {
    std::vector<CallAnswer> calls = {};
    std::vector<OpenAnswer> answers = {};
    std::vector<std::string> left = {};  // what could not be put back, and what helps
};

// Sets active flags, gives and takes letters, and hides a partition, each with what shows its effect, and
// puts everything back, also after a call that failed.
DiskTrial TryChanges(OpenedPc& pc, TrialDisk& disk);
