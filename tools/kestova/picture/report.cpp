#include "tools/kestova/picture/report.h"

#include <algorithm>

#include "tools/kestova/pc/disk_facts.h"
#include "tools/kestova/picture/columns.h"

namespace {

// What the report shows of a partition.
std::vector<const Column*> Shown() {
    return ColumnsOf("number,slot,start,size,type,name,active,hidden,letter,label,filesystem,condition,role");
}

void Add(std::string& words, const std::optional<std::string>& more) {
    if (more && !more->empty()) words += ", " + *more;
}

}  // namespace

std::vector<Remark> RemarksOf(const PcReport& report) {
    std::vector<Remark> remarks;
    for (const std::string& problem : {report.status.problem, report.check.problem}) {
        const bool isNew = std::ranges::count(remarks, problem, &Remark::text) == 0;
        if (!problem.empty() && isNew) remarks.push_back({problem, true});
    }
    for (const Finding& remark : report.status.remarks)
        remarks.push_back({remark.text, false});
    for (const std::string& note : report.notes)
        remarks.push_back({note, false});
    return remarks;
}

std::vector<Piece> PiecesOf(const DiskReport& disk) {
    std::vector<Piece> pieces;
    for (const PartitionReport& partition : disk.partitions)
        pieces.push_back({partition.offset, partition.size, &partition});
    for (const Gap& gap : disk.gaps)
        pieces.push_back({gap.offset, gap.size});
    std::ranges::stable_sort(pieces, {}, &Piece::offset);
    return pieces;
}

bool IsBarring(const PartitionReport& partition) {
    return partition.condition && *partition.condition != volume_condition::clean;
}

std::string PieceWords(const Piece& piece) {
    const std::string size = SizeWords(piece.size, false);
    if (piece.partition == nullptr) return "free: " + size;
    const PartitionReport& partition = *piece.partition;
    std::string words =
        "partition " + std::to_string(partition.number) + ": " + partition.typeName + ", " + size;
    if (partition.letter) words += ", " + LetterText(*partition.letter) + ":";
    Add(words, partition.label);
    if (partition.active) words += ", active";
    if (IsBarring(partition)) Add(words, partition.condition);
    for (const Role& role : partition.roles)
        words += std::string(", ") + role.role;
    return words;
}

std::vector<std::string> PieceTitles() {
    std::vector<std::string> titles;
    for (const Column* const column : Shown())
        titles.push_back(column->look.title);
    return titles;
}

std::vector<std::string> PieceRow(const Piece& piece) {
    std::vector<std::string> row;
    for (const Column* const column : Shown()) {
        if (piece.partition != nullptr)
            row.push_back(column->cell(*piece.partition, false).text);
        else
            row.push_back(column->gap != nullptr ? column->gap({piece.offset, piece.size}, false) : "");
    }
    return row;
}

const char* AnswerWord(const ConditionReport& condition) {
    return !condition.isMet ? "-" : *condition.isMet ? "yes" : "no";
}
