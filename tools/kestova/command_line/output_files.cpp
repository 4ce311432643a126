#include "tools/kestova/command_line/output_files.h"

#include "tools/kestova/common/errors.h"
#include "tools/kestova/picture/report.h"
#include "tools/kestova/recording/recorder.h"

namespace {

// Bytes in which a report and a recording can be known by their beginning.
constexpr size_t reportMark = 64;

struct Kept {
    std::string path;
    const char* what;
};

std::optional<OutputFile> Find(const std::string& option, const std::string& path) {
    if (path.empty()) return std::nullopt;
    return OutputFile(option, path);
}

[[noreturn]] void Refuse(const std::string& option, const OutputFile& output, const std::string& why) {
    throw WrongUse(option + ": " + output.Path() + why);
}

void Keep(const std::vector<Kept>& kept, const std::string& option, const std::optional<OutputFile>& output) {
    if (!output) return;
    for (const auto& [path, what] : kept) {
        if (!path.empty() && output->Is(path)) Refuse(option, *output, std::string(" is ") + what);
    }
}

// Otherwise this would fail only after the PC has been changed.
void CheckTarget(const std::string& option, const OutputFile& file) {
    if (!file.CanBeReplaced()) Refuse(option, file, " is no plain file");
    if (file.Folder().empty()) Refuse(option, file, " cannot be written: its folder is missing");
    if (!file.FolderTakesFiles()) Refuse(option, file, " cannot be written: its folder takes no new file");
}

// It begins with the level of a record, a tab, and what each text of the library begins with.
bool IsLog(const std::string& text) {
    return text.size() > 1 && text[0] >= '0' && text[0] <= '9' &&
           std::string_view(text).substr(1).starts_with("\tKestova");
}

// A name that is mistyped must not cost a file of another kind.
void CheckReplaces(const std::string& option, const OutputFile& output) {
    const std::optional<std::string> text = output.Beginning(largestDescription + 1);
    if (!text || text->empty() || IsLog(*text)) return;
    if (text->size() > largestDescription || !IsDescription(*text))
        Refuse(option, output, " is neither empty nor a description nor a log; --overwrite replaces it");
}

// The same for a report, which replaces reports alone.
void CheckReplacesReport(const OutputFile& output) {
    const std::optional<std::string> text = output.Beginning(reportMark);
    if (text && !text->empty() && !IsReport(*text))
        Refuse("--output", output, " is neither empty nor a report; --overwrite replaces it");
}

// And for a recording.
void CheckReplacesRecording(const OutputFile& record) {
    const std::optional<std::string> text = record.Beginning(reportMark);
    if (text && !text->empty() && !IsRecording(*text))
        Refuse("--record", record, " is neither empty nor a recording; --overwrite replaces it");
}

void KeepApart(const std::string& option, const std::optional<OutputFile>& one,
               const std::string& otherOption, const std::optional<OutputFile>& other) {
    if (one && other && one->Is(*other)) Refuse(option, *one, " is the file that " + otherOption + " writes");
}

}  // namespace

OutputFiles FindOutputFiles(const CommandLine& line, const InputFiles& inputs, const std::string& script) {
    OutputFiles files{Find("--log", line.log == "-" ? "" : line.log), Find("--record", line.choice.record),
                      Find("--save", line.choice.save),
                      Find("--output", line.output == "-" ? "" : line.output)};
    std::vector<Kept> kept;
    for (const std::string& image : inputs.images)
        kept.push_back({image, "an image of this PC"});
    kept.push_back({script == "-" ? "/dev/stdin" : script, "the script"});
    for (const std::string& journal : inputs.journals)
        kept.push_back({journal, "the journal of an image"});
    for (const std::string& backup : inputs.backups)
        kept.push_back({backup, "the backup of an image"});
    kept.push_back({line.choice.journal, "the journal of the image"});
    kept.push_back({line.choice.backup, "the backup of the image"});
    Keep(kept, "--log", files.log);
    Keep({{inputs.description, "the description that --pc reads"}}, "--log", files.log);
    Keep(kept, "--record", files.record);
    Keep({{inputs.description, "the description that --pc reads"}}, "--record", files.record);
    Keep(kept, "--save", files.save);
    Keep(kept, "--output", files.output);
    Keep({{inputs.description, "the description that --pc reads"}}, "--output", files.output);
    KeepApart("--log", files.log, "--save", files.save);
    KeepApart("--log", files.log, "--output", files.output);
    KeepApart("--save", files.save, "--output", files.output);
    KeepApart("--record", files.record, "--log", files.log);
    KeepApart("--record", files.record, "--save", files.save);
    KeepApart("--record", files.record, "--output", files.output);
    if (files.save) CheckTarget("--save", *files.save);
    if (files.output) CheckTarget("--output", *files.output);
    if (files.save && !line.overwrite) CheckReplaces("--save", *files.save);
    if (files.log && !line.overwrite) CheckReplaces("--log", *files.log);
    if (files.record && !line.overwrite) CheckReplacesRecording(*files.record);
    if (files.output && !line.overwrite) {
        if (line.command == "report" || line.command == "conform") {
            CheckReplacesReport(*files.output);
        } else {
            CheckReplaces("--output", *files.output);
        }
    }
    return files;
}
