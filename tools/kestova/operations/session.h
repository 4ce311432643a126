// One object of the library and what it is asked, each as a report: {"operation", "arguments", "result",
// "outputs", "log"[, "trace"]}.
#pragma once

#include <functional>
#include <optional>
#include <ostream>

#include "logging/logging.h"
#include "manager/kestova.h"
#include "tools/kestova/common/json.h"
#include "tools/kestova/common/log_json.h"
#include "tools/kestova/operations/operations.h"
#include "tools/kestova/pc/opened_pc.h"

// Keeps the records of one operation, and writes all of them to a file when there is one: a line a record,
// its level, a tab, its text.
class LogCollector final : public ILogSink {
  public:
    explicit LogCollector(std::ostream* file) : file_(file) { CLoggingFactory::GetInstance().AddSink(*this); }
    ~LogCollector() { CLoggingFactory::GetInstance().RemoveSink(*this); }
    LogCollector(const LogCollector&) = delete;
    LogCollector& operator=(const LogCollector&) = delete;

    void Write(const LogEntry& entry) override;
    // The records since the last time.
    Json Take();

  private:
    std::ostream* file_;
    Json records_ = Json::array();
};

// COM on the calling thread, as the library expects of its host.
class ComApartment {
  public:
    // Throws Failed.
    ComApartment();
    ~ComApartment() { CoUninitialize(); }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
};

class Session {
  public:
    // `log` may be null.
    Session(OpenedPc& pc, std::ostream* log, bool traced) : pc_(pc), traced_(traced), collector_(log) {}

    // The object is made first and destroyed last.
    Json Construct();
    Json Call(const Operation& operation, const Json& arguments);
    Json Destroy();

    Kestova& Object() { return *object_; }
    OpenedPc& OnPc() { return pc_; }

  private:
    Json Report(const std::string& name, const Json& arguments,
                const std::function<Json(Json& outputs)>& action);

    OpenedPc& pc_;
    bool traced_;
    LogCollector collector_;
    ComApartment apartment_;
    std::optional<Kestova> object_;
};
