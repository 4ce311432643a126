// One object of the library; each operation on it gives a report.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <vector>

#include "logging/logging.h"
#include "manager/kestova.h"
#include "tools/kestova/operations/operation_report.h"
#include "tools/kestova/operations/operation_watch.h"
#include "tools/kestova/operations/operations.h"
#include "tools/kestova/pc/opened_pc.h"

class ComApartment;

// Collects the log records of one operation and writes every record to a stream, if there is one: a line
// each, with its level, a tab and its text. A watch that is not null learns every record too.
class LogCollector final : public ILogSink {
  public:
    explicit LogCollector(std::ostream* file, OperationWatch* watch = nullptr) : file_(file), watch_(watch) {
        CLoggingFactory::GetInstance().AddSink(*this);
    }
    ~LogCollector() { CLoggingFactory::GetInstance().RemoveSink(*this); }
    LogCollector(const LogCollector&) = delete;
    LogCollector& operator=(const LogCollector&) = delete;

    void Write(const LogEntry& entry) override;
    // From now on the records of an operation are collected, or left out.
    void Collect(bool collects) { collects_ = collects; }
    // The records since the last call.
    std::vector<LogEntry> Take();

  private:
    std::ostream* file_;
    OperationWatch* watch_;
    bool collects_ = true;
    std::vector<LogEntry> records_;
};

class Session {
  public:
    // Initialises COM on the calling thread. `log` and `watch` may be null. Throws Failed.
    Session(OpenedPc& pc, std::ostream* log, bool traced, OperationWatch* watch = nullptr);
    ~Session();

    // Construct comes first, Destroy last.
    OperationReport Construct();
    OperationReport Call(const Operation& operation, const Values& arguments);
    // The same for a question, in a report without log records.
    OperationReport Ask(const Operation& operation, const Values& arguments);
    // Its result, if that is a number, whatever it means.
    int AskNumber(const char* operation);
    OperationReport Destroy();

    OpenedPc& OnPc() { return pc_; }

  private:
    OperationReport Report(const Operation& operation, const Values& arguments,
                           const std::function<Value(Values& outputs)>& action);

    OpenedPc& pc_;
    bool traced_;
    OperationWatch* watch_;
    LogCollector collector_;
    std::unique_ptr<ComApartment> com_;
    std::optional<Kestova> object_;
};
