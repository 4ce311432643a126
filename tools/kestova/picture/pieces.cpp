#include "tools/kestova/picture/pieces.h"

#include <algorithm>

#include "tools/kestova/common/text.h"
#include "tools/kestova/pc/disk_facts.h"
#include "tools/kestova/picture/type_words.h"

namespace {

void Add(std::string& words, const std::optional<std::string>& more) {
    if (more && !more->empty()) words += ", " + *more;
}

}  // namespace

std::vector<Piece> PiecesOf(const DiskReport& disk) {
    std::vector<Piece> pieces;
    for (const PartitionReport& partition : disk.partitions)
        pieces.push_back({partition.offset, partition.size, &partition});
    for (const Gap& gap : disk.gaps)
        pieces.push_back({gap.offset, gap.size});
    std::ranges::stable_sort(pieces, {}, &Piece::offset);
    return pieces;
}

std::string PieceWords(const Piece& piece) {
    const std::string size = SizeText(static_cast<uint64_t>(piece.size));
    if (piece.partition == nullptr) return "free: " + size;
    const PartitionReport& partition = *piece.partition;
    std::string words =
        "partition " + std::to_string(partition.number) + ": " + TypeWords(partition) + ", " + size;
    if (partition.letter) words += ", " + LetterText(*partition.letter) + ":";
    Add(words, partition.label);
    if (partition.active) words += ", active";
    if (IsBarring(partition)) Add(words, partition.condition);
    for (const Role& role : partition.roles)
        words += std::string(", ") + role.role;
    return words;
}

bool IsBarring(const PartitionReport& partition) {
    return partition.condition && *partition.condition != volume_condition::clean;
}
