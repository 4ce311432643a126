// Recordings of platform calls: the library runs on one whose lines are changed.
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/emulated_host.h"
#include "machine/facts/machines.h"
#include "manager/kestova.h"
#include "tools/kestova/recording/recorded_library.h"
#include "tools/kestova/recording/recorder.h"
#include "tools/kestova/recording/replay.h"

namespace {

void RunOperations(Tape& tape) {
    EmulatedHost host(machine::WinPeMedia());
    const RecordedLibrary library(tape);
    Kestova kestova;
    kestova.Initialize(false);
    kestova.SetRcvprtActive();
    kestova.IsExistRcvprt();
    WCHAR letters[33] = {};
    kestova.GetAllEncryptVolume(letters, 33);
    kestova.GetDriveLetter(0, 1);
    kestova.SetSystemActive();
}

std::string Recorded() {
    std::ostringstream lines;
    Recorder recorder(lines, "fuzz", "");
    RunOperations(recorder);
    return lines.str();
}

// Each change is four bytes: where it is, in parts of the whole, what is there afterwards, and whether that
// takes the place of a character or goes before it.
std::string Changed(std::string text, const uint8_t* data, size_t size) {
    for (size_t at = 0; at + 4 <= size; at += 4) {
        const size_t place = (data[at] * size_t{256} + data[at + 1]) * text.size() / 65536;
        const char character = static_cast<char>(data[at + 2]);
        text.replace(place, data[at + 3] % 2, 1, character);
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string recorded = Recorded();
    std::istringstream lines(Changed(recorded, data, size));
    try {
        Replay replay(lines, "recording");
        RunOperations(replay);
    } catch (const DamagedRecording&) {
        // A refusal is an answer.
    }
    return 0;
}
