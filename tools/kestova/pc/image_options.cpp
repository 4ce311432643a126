#include "tools/kestova/common/errors.h"
#include "tools/kestova/pc/described_pc.h"
#include "tools/kestova/pc/images.h"
#include "tools/kestova/process/interruption.h"

namespace {

// One of two options, or neither: a file for the only image, or none.
machine::JournalPlace PlaceOf(const PcChoice& choice, const char* option, const std::string& file,
                              bool isNone) {
    using Kind = machine::JournalPlace::Kind;
    if (isNone) return {Kind::None};
    if (file.empty()) return {};
    if (choice.images.size() != 1)
        throw WrongUse(std::string(option) + ": it is for one --image, not for more or none");
    return {Kind::Named, file};
}

}  // namespace

machine::JournalPlace JournalOf(const PcChoice& choice) {
    return PlaceOf(choice, "--journal", choice.journal, choice.noJournal);
}

machine::ImageUse UseOfImages(const PcChoice& choice, machine::ImageAccess access) {
    machine::ImageUse use(choice.dryRun ? machine::ImageAccess::Overlay : access, JournalOf(choice));
    // Who wants no journal beside the image wants no backup there.
    use.backup = PlaceOf(choice, "--backup", choice.backup,
                         choice.noBackup || (choice.noJournal && choice.backup.empty()));
    if (!choice.backup.empty() && choice.backup == choice.journal)
        throw WrongUse("--backup: " + choice.backup + " is the journal of the image");
    use.forceDirty = choice.forceDirty;
    use.beforeWriting = HoldInterruption;
    use.changesDisks =
        choice.yes || (use.access == machine::ImageAccess::Write && ConfirmDisks(choice.images));
    if (choice.sectorSize.empty()) return use;
    // A description can name images.
    if (choice.images.empty() && (choice.pc.empty() || FindMachine(choice.pc) != nullptr))
        throw WrongUse("--sector-size: it is for --image, and there is none");
    for (const uint32_t size : {512U, 4096U}) {
        if (choice.sectorSize == std::to_string(size)) use.sectorSize = size;
    }
    if (!use.sectorSize) throw WrongUse("--sector-size: 512 or 4096, not " + choice.sectorSize);
    return use;
}
