// The published calls that two PCs are compared by, with arguments that the library uses and some that it
// does not. None of them changes the PC, takes a lock, or shows a message; a failure is an answer like any
// other.
#pragma once

#include <string>
#include <vector>

#include "base/wide_string.h"
#include "tools/kestova/pc/opened_pc.h"

// A published call that was made.
struct CallAnswer {
    std::string call;          // its published name
    std::string arguments;     // in words
    std::string answer;        // in words: the result, the last error where the call sets it, and the outputs
    std::string inTrace = {};  // the call as the trace of an emulated PC shows it; empty for other PCs
};

// "CreateFileW(\\\\.\\C:, 0x0)": a call of an emulated PC's trace.
std::string InTrace(const machine::CallRecord& call);

class Probes {
  public:
    explicit Probes(OpenedPc& pc) : pc_(pc) {}

    // The answer to a call that has just been made. `libraryMakes` is the call in the trace of the library,
    // which makes it with other arguments; empty if it does not.
    void Add(const char* call, const std::string& arguments, const std::string& answer,
             const std::string& libraryMakes = "");
    std::vector<CallAnswer> Take() { return std::move(calls_); }

  private:
    OpenedPc& pc_;
    std::vector<CallAnswer> calls_;
};

// Makes all of them, on the PC that was opened last. COM must be initialised, and its security set.
std::vector<CallAnswer> MakeCalls(OpenedPc& pc);

// The areas. Those below the line need COM.
void ProbeLetters(Probes& probes);
void ProbeVolumeNames(Probes& probes);
void ProbeDevices(Probes& probes);
void ProbeFiles(Probes& probes);
void ProbePaths(Probes& probes);
void ProbeProfiles(Probes& probes);
void ProbeRegistry(Probes& probes);
void ProbeSystem(Probes& probes);
void ProbeText(Probes& probes);
// ---
void ProbeClasses(Probes& probes);
void ProbeDiskService(Probes& probes);
void ProbeEncryption(Probes& probes);
// Returns the device ids of the disks, which device set-up knows them by.
std::vector<WideString> ProbeDiskDrives(Probes& probes);
void ProbeDeviceSetup(Probes& probes, const std::vector<WideString>& deviceIds);

// "A" to "Z".
inline constexpr WCHAR allLetters[] = TEXT("ABCDEFGHIJKLMNOPQRSTUVWXYZ");

// All but those of network drives, on which every question can wait for a server that is gone; those of them
// that are drives; and that of the running Windows.
WideString LocalLetters();
WideString LettersInUse();
WCHAR WindowsLetter();
