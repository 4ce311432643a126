#include "tools/kestova/common/errors.h"
#include "tools/kestova/pc/images.h"

machine::JournalPlace JournalOf(const PcChoice& choice) {
    using Kind = machine::JournalPlace::Kind;
    if (choice.noJournal) return {Kind::None};
    if (choice.journal.empty()) return {};
    if (choice.images.size() != 1) throw WrongUse("--journal: it is for one --image, not for more or none");
    return {Kind::Named, choice.journal};
}
