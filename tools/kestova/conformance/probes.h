// The published calls that two PCs are compared by, with arguments that the library uses and some that it
// does not. None of them changes the PC, takes a lock, or shows a message; a failure is an answer like any
// other.
#pragma once

#include <string>
#include <vector>

#include "base/wide_string.h"
#include "tools/kestova/conformance/answers.h"

class Probes {
  public:
    explicit Probes(OpenedPc& pc) : pc_(pc) {}

    // The answer to a call that has just been made.
    void Add(const char* call, const std::string& arguments, const std::string& answer);
    std::vector<CallAnswer> Take() { return std::move(calls_); }

  private:
    OpenedPc& pc_;
    std::vector<CallAnswer> calls_;
};

void ProbeLetters(Probes& probes);
void ProbeDevices(Probes& probes);
void ProbeFiles(Probes& probes);
void ProbePaths(Probes& probes);
void ProbeProfiles(Probes& probes);
void ProbeRegistry(Probes& probes);
void ProbeSystem(Probes& probes);
void ProbeText(Probes& probes);
// COM must be initialised for those below, and its security set.
void ProbeClasses(Probes& probes);
void ProbeDiskService(Probes& probes);
void ProbeEncryption(Probes& probes);
// Returns the device ids of the disks, which device set-up knows them by.
std::vector<WideString> ProbeDiskDrives(Probes& probes);
void ProbeDeviceSetup(Probes& probes, const std::vector<WideString>& deviceIds);

// "A" to "Z".
inline constexpr WCHAR allLetters[] = TEXT("ABCDEFGHIJKLMNOPQRSTUVWXYZ");

// The letters of all drives, and that of the running Windows.
WideString LettersInUse();
WCHAR WindowsLetter();
