// What a PC answers to the calls and the questions by which two PCs are compared.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tools/kestova/operations/session.h"
#include "tools/kestova/probes/disk_trial.h"
#include "tools/kestova/probes/probes.h"

// An operation of the library that changes nothing.
struct OperationAnswer {
    std::string operation;
    std::string arguments;
    std::string answer;                 // result and outputs in words
    std::vector<std::string> log = {};  // its records, each behind its level
};

struct PcAnswers {
    std::vector<CallAnswer> calls = {};
    std::vector<OperationAnswer> operations = {};
    // The operations that make a call, by the call as the trace of an emulated PC shows it; empty for others.
    std::map<std::string, std::vector<std::string>> callers = {};
    // Of a disk on which changes were tried; nothing if none was.
    std::vector<OpenAnswer> openAnswers = {};
    std::vector<std::string> left = {};  // what could not be put back there
};

// Asks every operation that changes nothing, of an object of its own, and makes every call of the probes.
PcAnswers AskPc(Session& session);

// Tries changes on a disk of the PC that was asked, and adds the calls and what they answer.
void AskDisk(Session& session, TrialDisk& disk, PcAnswers& answers);
