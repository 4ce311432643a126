#include "tools/kestova/reports/as_text.h"

#include <algorithm>

#include "base/utf.h"
#include "machine/calls/documented_results.h"
#include "machine/calls/result_codes.h"
#include "tools/kestova/common/display_width.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/reports/call_words.h"

namespace {

using Rows = std::vector<std::vector<std::string>>;

// --- values ---

std::string Plain(std::monostate) {
    return "";
}

std::string Plain(bool flag) {
    return flag ? "true" : "false";
}

std::string Plain(int number) {
    return std::to_string(number);
}

std::string Plain(const std::string& text) {
    return WithNamedNul(text);
}

// "C: disk 0, partition 2; D: disk 0, partition 3".
std::string Plain(const std::vector<DriveRecord>& records) {
    if (records.empty()) return "none";
    return Joined(records, "; ", [](const DriveRecord& record) {
        return record.letter + ": disk " + std::to_string(record.disk) + ", partition " +
               std::to_string(record.partition);
    });
}

std::string Plain(const Value& value) {
    return std::visit([](const auto& held) { return Plain(held); }, value);
}

// --- files ---

std::string FileSizeText(const machine::FileEntry& entry) {
    if (entry.kind == machine::FileKind::Folder) return "folder";
    return entry.bytes ? SizeText(*entry.bytes) : "unreadable";
}

// --- operations ---

std::string ValueText(const Value& value, const std::string& words) {
    return Plain(value) + (words.empty() ? "" : ": " + words);
}

// "(0, 2) = C: its letter"; an operation without a result has nothing after its arguments.
std::string CallText(const OperationReport& report) {
    const std::string arguments =
        Joined(report.arguments, ", ", [](const auto& argument) { return Plain(argument.second); });
    std::string text = "(" + arguments + ")";
    if (report.stoppedBefore) return text + ": " + StopWords(report);
    if (IsNothing(report.result)) return text;
    return text + " = " + ValueText(report.result, ResultWords(report)) +
           (report.unwritten.empty() ? "" : "; but it could not be written");
}

// What follows the words of an argument that may be left out.
std::string StandardText(const Parameter& parameter) {
    return IsNothing(parameter.standard) ? "" : "; " + Plain(parameter.standard) + " when left out";
}

Rows MeaningRows(const std::vector<Meaning>& meanings) {
    Rows rows;
    for (const Meaning& meaning : meanings)
        rows.push_back({Plain(meaning.value), meaning.words});
    return rows;
}

std::string OperationText(const Operation& operation) {
    std::string text = Usage(operation) + "\n  " + operation.summary + "\n";
    for (const Parameter& parameter : operation.parameters) {
        text += "  " + parameter.name + (parameter.output ? " (output): " : ": ") + parameter.words +
                StandardText(parameter) + "\n" + Table(MeaningRows(parameter.meanings), "    ");
    }
    const std::string results = ResultsText(operation, "    ");
    return text + (results.empty() ? "  without a result\n" : "  result:\n" + results);
}

}  // namespace

std::string AsText(const LettersReport& letters) {
    Rows rows = {{"Letter", "Disk", "Partition", "Here"}};
    for (const LetterReport& letter : letters.letters)
        rows.push_back({letter.letter, TextOr(letter.disk, "-"), TextOr(letter.partition, "-"),
                        TextOr(letter.here, "-")});
    return Table(rows, "");
}

std::string AsText(const FilesReport& report) {
    Rows rows = {{"Name", "Size"}};
    if (report.hasHashes) rows.front().emplace_back("SHA-256");
    for (const ListedFile& file : report.files) {
        rows.push_back({Printable(file.entry.name), FileSizeText(file.entry)});
        if (report.hasHashes) rows.back().push_back(TextOr(file.sha256, "-"));
    }
    return Table(rows, "");
}

std::string AsText(const SwitchReport& report) {
    Rows rows;
    for (const ConditionReport& condition : report.conditions) {
        rows.push_back({condition.question, AnswerWord(condition), TextOf(condition)});
    }
    return Table(rows, "");
}

std::string AsText(const OperationReport& report) {
    const Operation& operation = *report.operation;
    std::string text = TraceText(report) + operation.name + CallText(report) + "\n";
    for (const Parameter& parameter : operation.parameters) {
        if (!parameter.output || report.stoppedBefore) continue;
        const Value output = ValueOf(report.outputs, parameter.name);
        text +=
            "  " + parameter.name + " = " + ValueText(output, WordsOf(output, parameter.meanings, "")) + "\n";
    }
    return text;
}

std::string AsText(const RecoveryReport& report) {
    if (!report.change) return report.image + ": nothing to recover\n";
    return report.image + ": a change that had been interrupted " + (report.isDryRun ? "would be " : "was ") +
           (*report.change == "finished" ? "finished" : "taken back") + "\n";
}

std::string AsText(const TableRepairReport& report) {
    if (report.problems.empty()) return report.image + ": nothing to repair\n";
    std::string text = report.image + (report.isRepaired ? ": was repaired\n" : ": would be repaired\n");
    for (const std::string& problem : report.problems)
        text += "  " + problem + "\n";
    return text + BackupText(report.backup);
}

std::string AsText(const UndoReport& report) {
    const char* const done = !report.isUndone  ? " was taken back already\n"
                             : report.isDryRun ? " would be taken back\n"
                                               : " was taken back\n";
    return report.image + ": " + report.file + done + BackupText(report.backup);
}

std::string BackupText(const std::string& file) {
    return file.empty() ? "" : "Backup, for kestova undo: " + file + "\n";
}

std::string AsText(const std::vector<Operation>& operations) {
    std::string text;
    for (const Operation& operation : operations)
        text += (text.empty() ? "" : "\n") + OperationText(operation);
    return text;
}

std::string AsText(const std::vector<machine::NamedMachine>& machines) {
    Rows rows;
    for (const machine::NamedMachine& named : machines)
        rows.push_back({std::string(named.name), std::string(named.summary)});
    return Table(rows, "");
}

static std::string MistakeText(const std::string& file, const machine::Mistake& mistake) {
    return file + ":" + std::to_string(mistake.line) + ":" + std::to_string(mistake.column) + ": " +
           (mistake.place.empty() ? "" : mistake.place + ": ") + mistake.what + "\n";
}

std::string AsText(const std::vector<ValidationReport>& reports) {
    std::string text;
    for (const ValidationReport& report : reports) {
        if (report.IsValid()) text += report.file + ": no mistakes\n";
        if (report.problem) text += *report.problem + "\n";
        for (const machine::Mistake& mistake : report.mistakes)
            text += MistakeText(report.file, mistake);
    }
    return text;
}

std::string AsText(const ComparisonReport& report) {
    if (report.differences.empty()) return "no differences\n";
    std::string text;
    for (const auto& [place, left, right] : report.differences) {
        text += place + ": ";
        if (!left || !right) {
            text += "only in " + (left ? report.left : report.right) + "\n";
        } else {
            text += CutAroundDifference(*left, *right) + " in " + report.left + ", " +
                    CutAroundDifference(*right, *left) + " in " + report.right + "\n";
        }
    }
    return text;
}

std::string AsText(std::span<const machine::CallInfo> calls) {
    Rows rows = {{"Call", "Fails with", "Changes the PC", "Documented codes"}};
    for (const machine::CallInfo& call : calls) {
        const std::string codes = Joined(machine::ResultsOf(call.name).failures, ", ", [&](uint32_t code) {
            return machine::CodeText(code, call.failsWith);
        });
        rows.push_back(
            {std::string(call.name), FailureWords(call.failsWith), call.changesPc ? "yes" : "no", codes});
    }
    return Table(rows, "");
}

std::string LedgerText(const std::map<std::string, int>& ledger) {
    Rows rows;
    for (const auto& [kind, count] : ledger)
        rows.push_back({kind, std::to_string(count)});
    return "Held in the end:\n" + Table(rows, "  ");
}

std::string TraceText(const OperationReport& report) {
    std::string text;
    if (!report.showsTrace) return text;
    for (const machine::JournalEntry& entry : report.trace)
        text += "  " + TraceLine(entry) + "\n";
    return text;
}

std::string ResultsText(const Operation& operation, const std::string& indent, size_t columns) {
    Rows rows = MeaningRows(operation.results);
    if (*operation.otherwise != '\0') rows.push_back({"else", operation.otherwise});
    return Table(rows, indent, columns);
}
