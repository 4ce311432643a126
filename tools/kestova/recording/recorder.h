// A recording that is made: JSON, a line each for the header, for what begins and ends, for each platform
// call and for each record of the log.
#pragma once

#include <ostream>
#include <string>

#include "tools/kestova/recording/tape.h"

class Recorder final : public Tape {
  public:
    // Writes the header: which command made the recording, and when. `output` must outlive it.
    Recorder(std::ostream& output, const std::string& command, const std::string& time);

    bool Answers() const override { return false; }
    // The line is written through, since the program can end early.
    void Add(const Json& line) override;
    // Nobody is answered.
    const Json* Next(const Json&) override { return nullptr; }
    void Reject(const std::string&) override {}

  private:
    std::ostream& output_;
};

// Whether a file that begins so is a recording.
bool IsRecording(const std::string& beginning);
