// The commands for images themselves.

#include "tools/kestova/command_line/command_functions.h"
#include "tools/kestova/command_line/messages.h"
#include "tools/kestova/command_line/run_on_pc.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/pc/images.h"
#include "tools/kestova/process/interruption.h"

namespace {

std::optional<std::string> ChangeWord(machine::Recovery recovery) {
    switch (recovery) {
        case machine::Recovery::Finished:
            return "finished";
        case machine::Recovery::TakenBack:
            return "takenBack";
        case machine::Recovery::None:
            break;
    }
    return std::nullopt;
}

}  // namespace

namespace commands {

int Recover(const CommandLine& line) {
    if (line.choice.images.empty()) throw WrongUse("recover: name the disk image with --image");
    const machine::ImageUse use = UseOfImages(line.choice, machine::ImageAccess::Write);
    for (const std::string& image : line.choice.images) {
        StopIfInterrupted();
        Show(line, RecoveryReport{image, ChangeWord(RecoverChange(image, use)), line.choice.dryRun});
    }
    return Done;
}

int RepairTables(const CommandLine& line) {
    if (line.choice.images.empty()) throw WrongUse("repair-table: name the disk image with --image");
    const machine::ImageUse use = UseOfImages(line.choice, machine::ImageAccess::Write);
    // One that cannot be repaired ends the command before any is written.
    machine::ImageUse looking = use;
    looking.access = machine::ImageAccess::Overlay;
    for (const std::string& image : line.choice.images)
        RepairTableOf(image, looking);
    for (const std::string& image : line.choice.images) {
        StopIfInterrupted();
        const auto [problems, backup, notes] = RepairTableOf(image, use);
        ShowNotes(line, notes);
        Show(line, TableRepairReport{image, problems, !problems.empty() && !line.choice.dryRun, backup});
    }
    return Done;
}

int Undo(const CommandLine& line) {
    const std::string& backup = line.arguments[0];
    if (line.choice.images.empty())
        throw WrongUse("undo: " + backup + " is not named after an image; name that with --image");
    if (line.choice.images.size() > 1) throw WrongUse("undo: it is for one --image");
    const std::string& image = line.choice.images.front();
    const auto [isUndone, ownBackup, notes] =
        UndoChange(image, backup, UseOfImages(line.choice, machine::ImageAccess::Write));
    ShowNotes(line, notes);
    Show(line, UndoReport{image, backup, isUndone, line.choice.dryRun, ownBackup});
    return Done;
}

}  // namespace commands
