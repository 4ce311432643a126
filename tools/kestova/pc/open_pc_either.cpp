// A build for Windows: the real PC, unless the command line names an emulated one.

#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/terminal.h"
#include "tools/kestova/pc/opened_pc.h"

namespace {

void RefuseMedium(bool given, const char* option) {
    if (!given) return;
    throw WrongUse(std::string(option) +
                   ": this build opens no images; --pc names a machine that comes with the tool, or a "
                   "description");
}

void RefuseOnRealPc(bool given, const char* option) {
    if (!given) return;
    throw WrongUse(std::string(option) +
                   " belongs to emulated PCs; name one with --pc, or leave it out for the PC that the "
                   "program runs on");
}

// A script is not asked.
void Confirm() {
    if (AskOnTerminal("This changes the PC that the program runs on. Go on?") == false)
        throw Failed("nothing was changed");
}

}  // namespace

std::unique_ptr<OpenedPc> OpenPc(const PcChoice& choice, Access access) {
    RefuseMedium(!choice.images.empty(), "--image");
    RefuseMedium(!choice.discs.empty(), "--disc");
    RefuseMedium(!choice.sticks.empty(), "--stick");
    if (!choice.pc.empty()) return OpenEmulatedPc(choice, access);
    RefuseOnRealPc(choice.windows, "--windows");
    RefuseOnRealPc(choice.windowsPe, "--pe");
    RefuseOnRealPc(choice.trace, "--trace");
    RefuseOnRealPc(choice.ledger, "--ledger");
    RefuseOnRealPc(!choice.faults.empty(), "--fail");
    RefuseOnRealPc(!choice.save.empty(), "--save");
    if (choice.dryRun && !choice.record.empty()) {
        throw WrongUse(
            "--record and --dry-run cannot be given together for the PC that the program runs on; --pc names an "
            "emulated one");
    }
    if (access == Access::Change && !choice.yes && !choice.dryRun) Confirm();
    return OpenRealPc(choice.dryRun);
}
