#include "tools/kestova/common/errors.h"
#include "tools/kestova/pc/images.h"

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
    use.backup = PlaceOf(choice, "--backup", choice.backup, choice.noBackup);
    use.forceDirty = choice.forceDirty;
    if (choice.sectorSize.empty()) return use;
    for (const uint32_t size : {512U, 4096U}) {
        if (choice.sectorSize == std::to_string(size)) use.sectorSize = size;
    }
    if (!use.sectorSize) throw WrongUse("--sector-size: 512 or 4096, not " + choice.sectorSize);
    return use;
}
