// The PC that a command works on: an emulated one, or the PC that the program runs on. The commands cannot
// tell.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/kestova/common/trace.h"

// How the command line names a PC, and what it asks of it.
struct PcChoice {
    std::vector<std::string> images;  // disk 0, 1, ...
    std::vector<std::string> discs;   // images in optical drives
    std::vector<std::string> sticks;  // images in removable drives
    std::string pc;                   // name of a machine that comes with the tool, or a description file
    bool windows = false;             // an installed Windows is running
    bool windowsPe = false;           // Windows PE is running
    bool dryRun = false;
    bool trace = false;
    std::vector<std::string> faults;  // NAME[#N][+]=CODE
    std::string save;                 // description file to write afterwards
};

enum class Access { Ask, Change };

// The files that a PC is read from.
struct InputFiles {
    std::string description;  // empty without one
    std::vector<std::string> images;
};

// While it lives the platform calls of the library and of this program reach this PC, and the library is
// loaded as a program's loader would.
class OpenedPc {
  public:
    OpenedPc() = default;
    virtual ~OpenedPc() = default;
    OpenedPc(const OpenedPc&) = delete;
    OpenedPc& operator=(const OpenedPc&) = delete;

    // What the user should know about the choice; empty when there is nothing to say.
    virtual const std::string& Note() const = 0;
    virtual InputFiles Inputs() const = 0;
    // Platform calls and log records in order, since the last time.
    virtual Trace TakeTrace() = 0;
    // Does what changes the PC only to find something out, and puts everything back. False, and nothing is
    // done, where nothing can be put back.
    virtual bool Rehearse(const std::function<void()>& action) = 0;
    // What is different since it was opened, a text each; nothing when it cannot be told.
    virtual std::optional<std::vector<std::string>> Changes() const = 0;
    // Writes the PC's description. Throws Failed.
    virtual void Save(const std::string& file) const = 0;
};

// The PC of that choice. Throws WrongUse for a choice that this build cannot serve or cannot understand,
// UnreadablePc for a PC that cannot be read.
std::unique_ptr<OpenedPc> OpenPc(const PcChoice& choice, Access access);

// The two kinds; a build has the first or both.
std::unique_ptr<OpenedPc> OpenEmulatedPc(const PcChoice& choice, Access access);
std::unique_ptr<OpenedPc> OpenRealPc();
