// The PC is the one that the program runs on. Windows loads the library and answers its calls.

#include "tools/kestova/errors.h"
#include "tools/kestova/opened_pc.h"

namespace {

void Refuse(bool given, const char* option) {
    if (given) {
        throw WrongUse(std::string(option) +
                       " belongs to emulated PCs; this build works on the PC that it runs on");
    }
}

}  // namespace

struct OpenedPc::Inside {
    std::string note;
};

OpenedPc::OpenedPc(const PcChoice& choice, Access) : inside_(std::make_unique<Inside>()) {
    Refuse(!choice.images.empty(), "--image");
    Refuse(!choice.discs.empty(), "--disc");
    Refuse(!choice.sticks.empty(), "--stick");
    Refuse(!choice.pc.empty(), "--pc");
    Refuse(choice.windows, "--windows");
    Refuse(choice.windowsPe, "--pe");
    Refuse(choice.dryRun, "--dry-run");
    Refuse(choice.trace, "--trace");
    Refuse(!choice.faults.empty(), "--fail");
    Refuse(!choice.save.empty(), "--save");
}

OpenedPc::~OpenedPc() = default;

const std::string& OpenedPc::Note() const {
    return inside_->note;
}

InputFiles OpenedPc::Inputs() const {
    return {};
}

Json OpenedPc::TakeTrace() {
    return Json::array();
}

bool OpenedPc::Rehearse(const std::function<void()>&) {
    return false;
}

std::optional<std::vector<std::string>> OpenedPc::Changes() const {
    return std::nullopt;
}

void OpenedPc::Save(const std::string&) const {}

std::vector<ComingMachine> ComingMachines() {
    return {};
}
