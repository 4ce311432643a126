#include "tools/kestova/operations/session.h"

#include "base/utf.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"

void LogCollector::Write(const LogEntry& entry) {
    const Json& record = records_.emplace_back(LogRecordJson(entry));
    if (file_ != nullptr)
        *file_ << entry.level << '\t' << OneLine(record["text"].get_ref<const std::string&>()) << '\n';
}

Json LogCollector::Take() {
    Json taken = Json::array();
    taken.swap(records_);
    return taken;
}

ComApartment::ComApartment() {
    const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (FAILED(result)) {
        throw Failed("COM could not be initialised: CoInitializeEx answered " +
                     Hex(static_cast<ULONG>(result), 8));
    }
}

Json Session::Construct() {
    return Report("Kestova", Json::object(), [this](Json&) {
        object_.emplace();
        return Json();
    });
}

Json Session::Call(const Operation& operation, const Json& arguments) {
    return Report(operation.name, arguments,
                  [&](Json& outputs) { return operation.invoke(*object_, arguments, outputs); });
}

Json Session::Destroy() {
    return Report("~Kestova", Json::object(), [this](Json&) {
        object_.reset();
        return Json();
    });
}

Json Session::Report(const std::string& name, const Json& arguments,
                     const std::function<Json(Json& outputs)>& action) {
    collector_.Take();
    if (traced_) pc_.TakeTrace();
    Json outputs = Json::object();
    const Json result = action(outputs);
    Json report = {{"operation", name},
                   {"arguments", arguments},
                   {"result", result},
                   {"outputs", outputs},
                   {"log", collector_.Take()}};
    if (traced_) report["trace"] = pc_.TakeTrace();
    return report;
}
