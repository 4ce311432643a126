// A recording that answers in place of the PC, strictly in the order of its lines.
#pragma once

#include <cstddef>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

#include "tools/kestova/recording/tape.h"

class Replay final : public Tape {
  public:
    // An operation of the recording, with its arguments by name.
    struct Operation {
        std::string name;
        Json arguments;
    };

    // Reads the whole recording, of at most 256 MiB. `name` is that of the file, for messages. Throws
    // DamagedRecording with it where the file is larger or does not begin as a recording of this version.
    Replay(std::istream& file, const std::string& name);

    bool Answers() const override { return true; }
    void Add(const Json& line) override;
    const Json* Next(const Json& asked) override;
    void Reject(const std::string& why) override;

    // The operation that begins at the next line; nothing at the end of the recording, and after a
    // difference. A line that begins none is a difference.
    std::optional<Operation> NextOperation();
    // Goes on where the operation of that name begins that comes next, with these arguments unless any do.
    // False, and nothing moves, if none does.
    bool GoTo(const std::string& operation, const std::optional<Json>& arguments = std::nullopt);
    // The first difference, or what is wrong with the file: "trace.jsonl:41: ...". Empty if there is none.
    const std::string& Problem() const { return problem_; }
    size_t Calls() const { return calls_; }

  private:
    // A line by where it begins, and how many are before it.
    struct Place {
        size_t begin = 0;
        size_t number = 0;
    };

    bool IsAtEnd() const { return next_.begin == text_.size(); }
    std::string_view TakeLine();
    const Json* ReadObject();
    void Complain(const std::string& what);

    std::string name_;
    std::string text_;
    Place next_;
    size_t calls_ = 0;
    Json line_;
    std::string operation_;  // that runs
    std::string record_;     // the last of the log
    std::string problem_;
};
