#include "tools/kestova/command_line/output_files.h"

#include "tools/kestova/common/errors.h"

namespace {

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
void CheckSaveTarget(const OutputFile& save) {
    if (!save.CanBeReplaced()) Refuse("--save", save, " is no plain file");
    if (save.Folder().empty()) Refuse("--save", save, " cannot be written: its folder is missing");
    if (!save.FolderTakesFiles()) Refuse("--save", save, " cannot be written: its folder takes no new file");
}

// A level and a tab begin each line.
bool IsLog(const std::string& text) {
    const size_t level = text.find_first_not_of("0123456789");
    return level != 0 && level != std::string::npos && text[level] == '\t';
}

// A name that is mistyped must not cost a file of another kind.
void CheckReplaces(const std::string& option, const OutputFile& output) {
    const std::optional<std::string> text = output.Beginning(largestDescription + 1);
    if (!text || text->empty() || IsLog(*text)) return;
    if (text->size() > largestDescription || !IsDescription(*text))
        Refuse(option, output, " is neither empty nor a description nor a log; --overwrite replaces it");
}

}  // namespace

OutputFiles FindOutputFiles(const CommandLine& line, const InputFiles& inputs, const std::string& script) {
    OutputFiles files{Find("--log", line.log == "-" ? "" : line.log), Find("--save", line.choice.save)};
    std::vector<Kept> kept;
    for (const std::string& image : inputs.images)
        kept.push_back({image, "an image of this PC"});
    kept.push_back({script == "-" ? "/dev/stdin" : script, "the script"});
    for (const std::string& journal : inputs.journals)
        kept.push_back({journal, "the journal of an image"});
    kept.push_back({line.choice.journal, "the journal of the image"});
    kept.push_back({line.choice.backup, "the backup of the image"});
    Keep(kept, "--log", files.log);
    Keep({{inputs.description, "the description that --pc reads"}}, "--log", files.log);
    Keep(kept, "--save", files.save);
    if (files.log && files.save && files.log->Is(*files.save))
        Refuse("--log", *files.log, " is the file that --save writes");
    if (files.save) CheckSaveTarget(*files.save);
    if (files.save && !line.overwrite) CheckReplaces("--save", *files.save);
    if (files.log && !line.overwrite) CheckReplaces("--log", *files.log);
    return files;
}
