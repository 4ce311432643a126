#include "tools/kestova/recording/recorder.h"

#include "tools/kestova/recording/header.h"

Recorder::Recorder(std::ostream& output, const std::string& command, const std::string& time)
    : output_(output) {
    Add({{recordingKey, recordingVersion},
         {"tool", KESTOVA_VERSION},
         {"bits", 8 * sizeof(void*)},
         {"command", command},
         {"time", time}});
}

void Recorder::Add(const Json& line) {
    output_ << line.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n' << std::flush;
}

bool IsRecording(const std::string& beginning) {
    return beginning.starts_with(std::string("{\"") + recordingKey + "\":");
}
