#include "tools/kestova/probes/probes.h"

#include "tools/kestova/common/text.h"

std::string InTrace(const machine::CallRecord& call) {
    return call.call + "(" + Joined(call.arguments, ", ") + ")";
}

void Probes::Add(const char* call, const std::string& arguments, const std::string& answer,
                 const std::string& libraryMakes) {
    CallAnswer made{.call = call, .arguments = arguments, .answer = answer};
    for (const machine::JournalEntry& entry : pc_.TakeTrace()) {
        const auto* const record = std::get_if<machine::CallRecord>(&entry);
        if (record != nullptr && record->call == call)
            made.inTrace = libraryMakes.empty() ? InTrace(*record) : libraryMakes;
    }
    calls_.push_back(std::move(made));
}

std::vector<CallAnswer> MakeCalls(OpenedPc& pc) {
    Probes probes(pc);
    ProbeLetters(probes);
    ProbeVolumeNames(probes);
    ProbeDevices(probes);
    ProbeFiles(probes);
    ProbePaths(probes);
    ProbeProfiles(probes);
    ProbeRegistry(probes);
    ProbeSystem(probes);
    ProbeText(probes);
    ProbeClasses(probes);
    ProbeDiskService(probes);
    ProbeEncryption(probes);
    ProbeDeviceSetup(probes, ProbeDiskDrives(probes));
    return probes.Take();
}
