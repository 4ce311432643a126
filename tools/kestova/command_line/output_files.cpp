#include "tools/kestova/command_line/output_files.h"

#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/write_target.h"

namespace fs = std::filesystem;

namespace {

// The same file by any name or link. Writing to a character device overwrites nothing.
bool IsSameFile(const fs::path& left, const fs::path& right) {
    std::error_code missing;
    if (fs::is_character_file(left, missing)) return false;
    return fs::equivalent(left, right, missing) || WriteTarget(left) == WriteTarget(right);
}

void Keep(const std::string& kept, const char* what, const std::string& option, const std::string& output) {
    if (kept.empty() || output.empty() || !IsSameFile(output, kept)) return;
    throw WrongUse(option + ": " + output + " is " + what);
}

void KeepInputs(const InputFiles& inputs, const std::string& script, const std::string& option,
                const std::string& output) {
    for (const std::string& image : inputs.images)
        Keep(image, "an image of this PC", option, output);
    Keep(script == "-" ? "/dev/stdin" : script, "the script", option, output);
}

// Otherwise this would fail only after the PC has been changed.
void CheckSaveTarget(const std::string& save) {
    std::error_code missing;
    if (fs::exists(save, missing) && !fs::is_regular_file(save, missing))
        throw WrongUse("--save: " + save + " is no plain file");
    if (!fs::is_directory(WriteTarget(save).parent_path(), missing))
        throw WrongUse("--save: " + save + " cannot be written: its folder is missing");
}

}  // namespace

void CheckOutputFiles(const CommandLine& line, const InputFiles& inputs, const std::string& script) {
    const std::string log = line.log == "-" ? "" : line.log;
    const std::string& save = line.choice.save;
    KeepInputs(inputs, script, "--log", log);
    Keep(inputs.description, "the description that --pc reads", "--log", log);
    KeepInputs(inputs, script, "--save", save);
    Keep(save, "the file that --save writes", "--log", log);
    if (!save.empty()) CheckSaveTarget(save);
}
