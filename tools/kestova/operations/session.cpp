#include "tools/kestova/operations/session.h"

#include <algorithm>

#include "base/com_apartment.h"
#include "base/hexadecimal.h"
#include "base/utf.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/operations/unanswered.h"

namespace {

const Operation construction{.name = "Kestova", .summary = "Makes the object."};
const Operation destruction{.name = "~Kestova", .summary = "Destroys the object."};

const char* OutcomeOf(const OperationReport& report) {
    const Meaning* const meaning = FindMeaning(report.operation->results, report.result);
    if (meaning == nullptr || meaning->outcomes.record == nullptr) return nullptr;
    const bool isRecorded = std::ranges::any_of(
        report.log, [&](const LogEntry& entry) { return entry.Text() == meaning->outcomes.record; });
    return isRecorded ? meaning->outcomes.with : meaning->outcomes.without;
}

// As long as it lasts, no record is collected.
class Pause {
  public:
    explicit Pause(LogCollector& collector) : collector_(collector) { collector_.Collect(false); }
    ~Pause() { collector_.Collect(true); }
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

  private:
    LogCollector& collector_;
};

}  // namespace

void LogCollector::Write(const LogEntry& entry) {
    if (collects_) records_.push_back(entry);
    if (file_ != nullptr) *file_ << entry.level << '\t' << OneLine(ToUtf8(entry.Text())) << '\n';
    if (watch_ != nullptr) watch_->Logs(entry);
}

std::vector<LogEntry> LogCollector::Take() {
    return std::exchange(records_, {});
}

Session::Session(OpenedPc& pc, std::ostream* log, bool traced, OperationWatch* watch)
    : pc_(pc),
      traced_(traced),
      watch_(watch),
      collector_(log, watch),
      com_(std::make_unique<ComApartment>()) {
    if (FAILED(com_->Result())) {
        throw Failed("COM could not be initialised: CoInitializeEx answered " +
                     Hex(static_cast<ULONG>(com_->Result()), 8));
    }
}

// Here, where the platform's calls go to the PC that was opened.
Session::~Session() = default;

OperationReport Session::Construct() {
    return Report(construction, {}, [this](Values&) -> Value {
        object_.emplace();
        return {};
    });
}

OperationReport Session::Call(const Operation& operation, const Values& arguments) {
    OperationReport report = Report(operation, arguments, [&](Values& outputs) {
        return operation.invoke(*object_, arguments, outputs);
    });
    if (operation.changesPc) {
        report.unwritten = pc_.Commit();
        report.backups = pc_.Backups();
        report.changes = pc_.TakeChanges();
        if (!report.unwritten.empty()) {
            report.outcome = nullptr;
            report.changes.reset();
        }
    }
    return report;
}

OperationReport Session::Ask(const Operation& operation, const Values& arguments) {
    const Pause pause(collector_);
    return Call(operation, arguments);
}

int Session::AskNumber(const char* operation) {
    return std::get<int>(Ask(FindOperation(operation), {}).result);
}

OperationReport Session::Destroy() {
    return Report(destruction, {}, [this](Values&) -> Value {
        object_.reset();
        return {};
    });
}

OperationReport Session::Report(const Operation& operation, const Values& arguments,
                                const std::function<Value(Values& outputs)>& action) {
    collector_.Take();
    pc_.TakeTrace();
    pc_.TakeStop();
    OperationReport report{.operation = &operation, .arguments = arguments, .showsTrace = traced_};
    if (watch_ != nullptr) watch_->Begins(operation, arguments);
    report.result = action(report.outputs);
    if (watch_ != nullptr) watch_->Ends(operation, report.result, report.outputs);
    report.log = collector_.Take();
    report.trace = pc_.TakeTrace();
    report.stoppedBefore = pc_.TakeStop();
    if (report.stoppedBefore) return report;
    report.problem = WhyUnanswered(report);
    report.outcome = OutcomeOf(report);
    return report;
}
