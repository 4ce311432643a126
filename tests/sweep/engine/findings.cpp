#include "tests/sweep/engine/findings.h"

#include <algorithm>
#include <regex>

#include "base/utf.h"
#include "tests/support/record_line.h"
#include "tests/sweep/engine/difference.h"

namespace sweep {

namespace {

std::string ToText(const Value& value) {
    struct Words {
        std::string operator()(std::monostate) const { return "nothing"; }
        std::string operator()(bool flag) const { return flag ? "true" : "false"; }
        std::string operator()(int number) const { return std::to_string(number); }
        std::string operator()(const std::string& text) const {
            return text == std::string(1, '\0') ? "NUL" : text;
        }
        std::string operator()(const std::vector<DriveRecord>& records) const {
            std::string text;
            for (const DriveRecord& record : records)
                text += record.letter + std::to_string(record.disk) + "." + std::to_string(record.partition);
            return "[" + text + "]";
        }
    };
    return std::visit(Words(), value);
}

// A value that the operation lists, such as 0 for "no" or "unknown", unless 0 is the number of a disk.
bool IsNone(const std::vector<Meaning>& meanings, const Value& value) {
    static const std::vector<Value> nones = {0, -1, std::string(), std::string("0")};
    return FindMeaning(meanings, value) != nullptr && std::ranges::count(nones, value) != 0;
}

// "No", "none" or "unknown": with outputs, those say it.
bool SaysNone(const Operation& operation, const Outcome& outcome) {
    if (outcome.outputs.empty()) return IsNone(operation.results, outcome.result);
    return std::ranges::all_of(operation.parameters, [&](const Parameter& parameter) {
        if (!parameter.output) return true;
        const Value& value = ValueOf(outcome.outputs, parameter.name);
        return IsNone(parameter.meanings, value) || value == Value(std::vector<DriveRecord>());
    });
}

std::string Joined(const std::set<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

class Checks {
  public:
    Checks(const Task& task, const Reference& reference, const Disturbance& disturbance,
           const Outcome& outcome)
        : task_(task), reference_(reference), disturbance_(disturbance), outcome_(outcome) {}

    std::vector<Finding> Findings();

  private:
    const Operation& Done() const { return *task_.operation; }
    bool Fails() const { return IsFailure(Done(), outcome_.result); }
    void Breach(const char* rule, const std::string& what);

    void ListedResult();
    void ClosingRecord();
    void NamedCall();
    void Ledger();
    void OneDisk();
    void Success();
    void Answer();
    void WayBack();
    void TrueAdvice();

    const Task& task_;
    const Reference& reference_;
    const Disturbance& disturbance_;
    const Outcome& outcome_;
    std::vector<Finding> findings_;
};

void Checks::Breach(const char* rule, const std::string& what) {
    const std::string call = disturbance_.call.empty() ? "-" : disturbance_.call;
    findings_.push_back({Table::Breaches, {rule, Done().name, call, NameOf(disturbance_.way), what}});
}

void Checks::ListedResult() {
    if (!outcome_.thrown.empty()) return Breach("nothing is thrown", outcome_.thrown);
    if (outcome_.moduleStaysCurrent) Breach("the module is current no longer", "-");
    if (!IsListed(Done(), outcome_.result)) Breach("the result is listed", ToText(outcome_.result));
}

// A value without a label before it: a message that was formatted first, or a path.
bool IsUnlabelled(const std::vector<LogItem>& items, size_t at) {
    return at == 0 && (items[at].kind == LogItemKind::String ||
                       ToUtf8(items[at].text).find("Kestova") == std::string::npos);
}

// Whether an item of a record is a value, as a path behind a label is.
bool IsValue(const std::vector<LogItem>& items, size_t at) {
    return items[at].kind != LogItemKind::Text || (at > 0 && items[at - 1].kind == LogItemKind::Text);
}

// The empty text that ends some records.
bool IsClosing(const LogItem& item) {
    return item.kind == LogItemKind::Text && item.text.empty();
}

// What a value repeats of the outcome; empty if nothing.
std::string NameOfValue(const std::string& value, const Outcome& outcome) {
    for (const auto& [name, output] : outcome.outputs) {
        if (value == ToText(output)) return "the " + name;
    }
    return value == ToText(outcome.result) ? "the result" : "";
}

// A message with its values, which are numbers and letters, in braces, each with the name of the output that
// it repeats. A message has them in the order of the outputs.
std::string WithoutValues(const std::string& message, const Outcome& outcome) {
    static const std::regex value("-?\\b([0-9]+|[A-Z])\\b");
    std::string text;
    auto output = outcome.outputs.begin();
    auto rest = message.begin();
    for (std::sregex_iterator at(message.begin(), message.end(), value), end; at != end; ++at) {
        text.append(rest, message.begin() + at->position());
        rest = message.begin() + at->position() + at->length();
        const bool repeats = output != outcome.outputs.end() && at->str() == ToText(output->second);
        text += repeats ? "{the " + output->first + "}" : "{}";
        if (output != outcome.outputs.end()) ++output;
    }
    return text.append(rest, message.end());
}

// The text of a record. A value is its kind, and the name of what it repeats.
std::string Template(const LogEntry& record, const Outcome& outcome) {
    LogEntry general = record;
    while (!general.items.empty() && IsClosing(general.items.back()))
        general.items.pop_back();
    for (size_t at = 0; at < general.items.size(); ++at) {
        LogItem& item = general.items[at];
        const bool isUnlabelled = IsUnlabelled(record.items, at);
        if (!isUnlabelled && !IsValue(record.items, at)) continue;
        if (item.kind == LogItemKind::Text) item.kind = LogItemKind::String;
        const std::string text = ToUtf8(item.text);
        item.text = ToWide(isUnlabelled ? WithoutValues(text, outcome) : NameOfValue(text, outcome));
    }
    std::string line = LineOf(general);
    line.pop_back();
    return line;
}

void Checks::ClosingRecord() {
    const bool isListed = FindMeaning(Done().results, outcome_.result) != nullptr;
    std::string result = isListed ? ToText(outcome_.result) : "another";
    if (Done().results.empty()) result = "nothing";
    const std::string record =
        outcome_.closingRecord ? Template(*outcome_.closingRecord, outcome_) : "no record";
    findings_.push_back({Table::ClosingRecords, {Done().name, result, record}});
}

// "GetProperties" of "IVdsDisk::GetProperties", "CreateFile" of "CreateFileW".
std::string ShortName(const std::string& call) {
    const size_t colons = call.find("::");
    if (colons != std::string::npos) return call.substr(colons + 2);
    return call.ends_with('W') ? call.substr(0, call.size() - 1) : call;
}

// A file that is not there is an answer and no failure.
constexpr const char* asksForFile = "PathFileExistsW";

void Checks::NamedCall() {
    if (disturbance_.way != Way::Fails || !outcome_.site) return;
    const Site& site = *outcome_.site;
    if (site.call == asksForFile) return;
    const std::string name = ShortName(site.call);
    const bool named = std::any_of(site.after.begin(), site.after.end(), [&](const LogEntry& record) {
        return HasWord(ToUtf8(record.Text()), name);
    });
    if (named) return;
    const Outcome nothing;
    findings_.push_back({Table::UnnamedCalls,
                         {site.call, site.before ? Template(*site.before, nothing) : "-",
                          site.after.empty() ? "-" : Template(site.after.front(), nothing)}});
}

// What the ledger calls the strings of a disk's record, and how many each has.
constexpr const char* diskString = "VDS_DISK_PROP string";
constexpr int stringsOfDisk = 5;

void Checks::Ledger() {
    const bool isReference = disturbance_.way == Way::None;
    for (const auto& [kind, count] : outcome_.outstanding) {
        const auto kept = reference_.undisturbed.outstanding.find(kind);
        const int usual = kept == reference_.undisturbed.outstanding.end() ? 0 : kept->second;
        if (isReference || count > usual) Breach("nothing stays on loan", kind);
        const bool isWhole = kind != diskString || count == outcome_.disksRead * stringsOfDisk;
        if (isReference && !isWhole) Breach("nothing stays on loan", "some strings of a disk");
    }
    for (const std::string& violation : outcome_.violations)
        Breach("everything is released once", violation);
}

void Checks::OneDisk() {
    const std::set<uint32_t> changed = DifferentDisks(reference_.before, outcome_.after);
    if (changed.size() > 1) Breach("one operation changes one disk", "several");
    const bool another = std::ranges::any_of(
        changed, [&](uint32_t disk) { return reference_.internalDisk != Value(static_cast<int>(disk)); });
    if (another) Breach("one operation changes one disk", "another disk");
    const bool boots = !ActiveFlags(reference_.before).empty() && ActiveFlags(outcome_.after).empty();
    if (boots && Done().name != "ClearActive") Breach("a partition stays active", "-");
}

// Success leaves the PC as an undisturbed success does; a question leaves it as it was.
void Checks::Success() {
    const machine::Pc& done = reference_.undisturbed.after;
    if (Done().changesPc) {
        const bool succeeded = !Fails() && !Done().results.empty() &&
                               outcome_.result == reference_.undisturbed.result &&
                               (outcome_.outputs.empty() || !SaysNone(Done(), outcome_));
        const std::set<std::string> differences = Differences(outcome_.after, done);
        if (succeeded && !differences.empty()) Breach("success leaves the PC as done", Joined(differences));
        return;
    }
    const std::set<std::string> differences = Differences(outcome_.after, done);
    if (outcome_.after != reference_.before && !differences.empty())
        Breach("a question changes nothing", Joined(differences));
}

// The true answer, a failure, or none.
void Checks::Answer() {
    const Outcome& undisturbed = reference_.undisturbed;
    const bool same = outcome_.result == undisturbed.result && outcome_.outputs == undisturbed.outputs;
    if (same || Fails() || SaysNone(Done(), outcome_) || Done().changesPc) return;
    std::set<std::string> untrue;
    if (outcome_.result != undisturbed.result) untrue.insert("result");
    for (const auto& [name, value] : outcome_.outputs) {
        if (value != ValueOf(undisturbed.outputs, name)) untrue.insert(name);
    }
    Breach("an answer is true", Joined(untrue));
}

// After any failed switch SetSystemActive brings back the flags that it leaves without the switch, or after
// one that succeeded.
void Checks::WayBack() {
    if (!outcome_.returned || !Fails() || IsFailure(Done(), reference_.undisturbed.result)) return;
    const Flags flags = ActiveFlags(outcome_.afterReturn);
    if (flags == ActiveFlags(reference_.undisturbed.afterReturn)) return;
    if (flags == ActiveFlags(reference_.returned)) return;
    Breach("SetSystemActive returns after a failed switch",
           ToText(outcome_.result) + ", then " + ToText(*outcome_.returned) +
               (reference_.before.switches.activeFlagIsExclusive ? ", with exclusive flags" : ""));
}

// Calls that are known to have worked although they said otherwise are beyond any advice.
bool FailsWithoutEffect(Way way) {
    return way == Way::None || way == Way::Fails || way == Way::FailsOnwards || way == Way::AllCallsFail ||
           way == Way::TwoFail;
}

// A failure with which nothing is changed has changed nothing, but that a switch has hidden the recovery
// partition and given it a letter; one after which a program goes on has moved the flag. That questions
// change nothing is a rule of its own.
void Checks::TrueAdvice() {
    if (!Done().changesPc || !Fails() || !FailsWithoutEffect(disturbance_.way)) return;
    const Advice advice = FindMeaning(Done().results, outcome_.result)->after.advice;
    std::set<std::string> untrue;
    if (advice == Advice::Retry || advice == Advice::GiveUp) {
        untrue = Differences(outcome_.after, outcome_.start);
        if (IsSwitch(Done())) {
            untrue.erase("letter");
            untrue.erase("type");
        }
    } else if (advice == Advice::GoOn &&
               ActiveFlags(outcome_.after) != ActiveFlags(reference_.undisturbed.after)) {
        untrue = {"active flag"};
    }
    if (untrue.empty()) return;
    Breach("the advice is true", ToText(outcome_.result) + ", " + NameOf(advice) + ": " + Joined(untrue));
}

std::vector<Finding> Checks::Findings() {
    ListedResult();
    if (!outcome_.thrown.empty()) return findings_;
    ClosingRecord();
    NamedCall();
    Ledger();
    OneDisk();
    Success();
    Answer();
    WayBack();
    TrueAdvice();
    return findings_;
}

}  // namespace

std::vector<Finding> Check(const Task& task, const Reference& reference, const Disturbance& disturbance,
                           const Outcome& outcome) {
    return Checks(task, reference, disturbance, outcome).Findings();
}

bool RolledBack(const Task& task, const Outcome& outcome) {
    const std::string& name = task.operation->name;
    if (name == "SetPTwoActive") return outcome.result == Value(1);
    return (name == "SetRcvprtActive" || name == "SetPOneActive") && outcome.result == Value(5);
}

}  // namespace sweep
