// Learns what happens in a session while it happens.
#pragma once

#include "logging/logging.h"
#include "tools/kestova/operations/operations.h"

class OperationWatch {
  public:
    virtual void Begins(const Operation& operation, const Values& arguments) = 0;
    virtual void Logs(const LogEntry& record) = 0;
    virtual void Ends(const Operation& operation, const Value& result, const Values& outputs) = 0;

  protected:
    ~OperationWatch() = default;
};
