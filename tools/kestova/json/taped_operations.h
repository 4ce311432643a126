// Operations and their log on a tape.
#pragma once

#include "tools/kestova/operations/operation_watch.h"
#include "tools/kestova/operations/script.h"
#include "tools/kestova/recording/replay.h"

// Writes what happens in a session between the platform calls of a recording, or compares it with a replay.
class TapedOperations final : public OperationWatch {
  public:
    explicit TapedOperations(Tape& tape) : tape_(tape) {}

    void Begins(const Operation& operation, const Values& arguments) override;
    void Logs(const LogEntry& record) override;
    void Ends(const Operation& operation, const Value& result, const Values& outputs) override;

  private:
    Tape& tape_;
};

// The arguments of a recorded operation. Throws WrongUse for those that it does not have.
Values ArgumentsOf(const Operation& operation, const Replay::Operation& recorded);

// Goes on where that call with these arguments begins. False if none follows.
bool GoTo(Replay& replay, const PlannedCall& call);
