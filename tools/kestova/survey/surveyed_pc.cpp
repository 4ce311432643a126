#include "tools/kestova/survey/surveyed_pc.h"

#include <algorithm>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/operations/session.h"
#include "tools/kestova/pc/images.h"
#include "tools/kestova/process/confinement.h"
#include "tools/kestova/survey/survey_inputs.h"

namespace {

PcChoice ChoiceOf(const std::string& file, const PcChoice& common) {
    PcChoice choice = common;
    if (IsDescriptionFile(file)) {
        choice.pc = file;
    } else {
        choice.images = {file};
    }
    return choice;
}

void Add(const OperationReport& report, SurveyedPc& surveyed) {
    for (const LogEntry& record : report.log)
        if (record.level == errorLevel) surveyed.records.push_back(record);
}

void Add(OperationReport report, SurveyedPc& surveyed, int status) {
    Add(report, surveyed);
    surveyed.status = std::max(surveyed.status.value_or(Done), status);
    report.log.clear();
    surveyed.operations.push_back(std::move(report));
}

void RunScript(Session& session, const SurveyWork& work, SurveyedPc& surveyed) {
    Add(session.Construct(), surveyed);
    if (work.initialize)
        Add(session.Call(FindOperation("Initialize"), {{"reserved", false}}), surveyed, Done);
    for (const PlannedCall& call : work.calls) {
        OperationReport report = session.Call(*call.operation, call.arguments);
        const std::string unwritten = report.unwritten;
        const int status = StatusOf(report);
        Add(std::move(report), surveyed, status);
        if (!unwritten.empty()) throw Failed(unwritten);
    }
    Add(session.Destroy(), surveyed);
}

void SurveyOpened(OpenedPc& pc, const SurveyWork& work, SurveyedPc& surveyed) {
    const InputFiles inputs = pc.Inputs();
    const bool writesImages = !work.choice.dryRun && !inputs.images.empty();
    EndOpening();
    ConfineTo({.writesImages = writesImages,
               .writesDisks = writesImages && inputs.haveDisks,
               .imageBytes = inputs.imageBytes,
               .operations = work.calls.size()});
    surveyed.name = pc.Name();
    surveyed.status = Done;
    Session session(pc, nullptr, false);
    RunScript(session, work, surveyed);
    surveyed.changes = pc.Changes();
}

void Fail(SurveyedPc& surveyed, const std::exception& error, ExitStatus status) {
    surveyed.error = error.what();
    surveyed.status = status;
}

}  // namespace

SurveyedPc Survey(const std::string& file, const SurveyWork& work) {
    SurveyedPc surveyed{.pc = file};
    try {
        const PcChoice choice = ChoiceOf(file, work.choice);
        BeginOpening(choice, {.readsHives = true});
        ConfineAtStart();
        const std::unique_ptr<OpenedPc> pc = OpenPc(choice, AccessFor(work.calls));
        SurveyOpened(*pc, work, surveyed);
    } catch (const WrongUse& error) {
        Fail(surveyed, error, WrongUseStatus);
    } catch (const UnreadablePc& error) {
        Fail(surveyed, error, UnreadablePcStatus);
    } catch (const std::exception& error) {
        Fail(surveyed, error, Failure);
    }
    return surveyed;
}
