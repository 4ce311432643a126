// What every command that works on a PC has in common: the log, the PC, the object from its making to its
// destruction, and what is shown and saved afterwards.
#pragma once

#include <functional>
#include <iostream>
#include <string>

#include "tools/kestova/command_line/command_line.h"
#include "tools/kestova/command_line/output_files.h"
#include "tools/kestova/json/as_json.h"
#include "tools/kestova/operations/session.h"
#include "tools/kestova/recording/replay.h"
#include "tools/kestova/reports/as_text.h"

struct PcWork {
    Access access = Access::Ask;
    bool initialize = true;
    bool showLife = false;     // report construction, Initialize and destruction too
    bool showChanges = false;  // also without --dry-run
    std::string script = {};   // the file that the work was read from
    size_t operations = 1;
    Replay* replay = nullptr;  // which answers the library in place of the PC; null: the PC does
    // What `run` makes for the file of --output, or for standard output; null: nothing.
    const std::string* output = nullptr;
    std::function<int(Session& session)> run;  // returns the exit status
};

// Returns what `run` returned. Throws WrongUse, UnreadablePc, Failed.
int RunOnPc(const CommandLine& line, const PcWork& work);

// Writes text to standard output. With --ledger the last object in JSON is kept back until RunOnPc has added
// its last key.
void ShowText(const CommandLine& line, const std::string& text);

// Writes what was made to the file of --output, or to standard output. Throws Failed.
void WriteOutput(const std::string& text, OutputFiles& files);

// Writes a report, or a list of them.
template <typename Report>
void Show(const CommandLine& line, const Report& report) {
    ShowText(line, line.json ? AsJson(report) : PrintableText(AsText(report)));
}
