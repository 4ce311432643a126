#include "tools/kestova/common/errors.h"
#include "tools/kestova/pc/images.h"

machine::JournalPlace JournalOf(const PcChoice& choice) {
    using Kind = machine::JournalPlace::Kind;
    if (choice.noJournal) return {Kind::None};
    if (choice.journal.empty()) return {};
    if (choice.images.size() != 1) throw WrongUse("--journal: it is for one --image, not for more or none");
    return {Kind::Named, choice.journal};
}

machine::ImageUse UseOfImages(const PcChoice& choice, machine::ImageAccess access) {
    machine::ImageUse use(choice.dryRun ? machine::ImageAccess::Overlay : access, JournalOf(choice));
    use.forceDirty = choice.forceDirty;
    if (choice.sectorSize.empty()) return use;
    for (const uint32_t size : {512U, 4096U}) {
        if (choice.sectorSize == std::to_string(size)) use.sectorSize = size;
    }
    if (!use.sectorSize) throw WrongUse("--sector-size: 512 or 4096, not " + choice.sectorSize);
    return use;
}
