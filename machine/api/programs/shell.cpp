// Starting a file as the shell does. Batch files are the only kind that this PC runs: the command interpreter
// takes the time that the PC's facts tell, and what the batch does has happened when that is over.

#include "base/text_case.h"
#include "machine/api/files/redirection.h"
#include "machine/api/handles/processes.h"
#include "machine/api/call/outcome.h"
#include "machine/api/programs/batch_file.h"
#include "machine/journal/clock.h"

using namespace machine;

namespace {

constexpr intptr_t started = 42;  // hInstApp of a success is above 32

bool IsBatch(std::string_view file) {
    constexpr std::string_view extension = ".bat";
    return file.size() > extension.size() && SameName(file.substr(file.size() - extension.size()), extension);
}

uint32_t Start(EmulatedPc& pc, const std::string& verb, const std::string& file) {
    std::string content;
    if (const uint32_t error = FilesOf(pc).Read(file, content); error != ERROR_SUCCESS) return error;
    const bool opens = verb.empty() || SameName(verb, "open");
    if (!opens || !IsBatch(file)) return ERROR_NO_ASSOCIATION;
    Schedule(pc, pc.facts.shell.milliseconds, [content](EmulatedPc& later) { RunBatch(later, content); });
    return ERROR_SUCCESS;
}

}  // namespace

// Error 2 or 3 when there is no such file, 1155 for one that is no batch file and for another verb than
// "open", 87 for a record of another size; hInstApp is then the error, else above 32. With
// SEE_MASK_NOCLOSEPROCESS hProcess is the process, which the caller closes, or null when the PC's facts keep
// it back.
extern "C" BOOL WINAPI ShellExecuteExW(SHELLEXECUTEINFOW* info) {
    if (info == nullptr || info->cbSize != sizeof *info) {
        return Answer<BOOL>("ShellExecuteExW", {},
                            [](EmulatedPc& pc) { return Outcome(pc, ERROR_INVALID_PARAMETER); });
    }
    const std::string verb = ToUtf8(info->lpVerb);
    const std::string file = ToUtf8(info->lpFile);
    info->hProcess = nullptr;
    info->hInstApp = nullptr;
    std::vector<std::string> arguments = {verb,
                                          file,
                                          ToUtf8(info->lpParameters),
                                          ToUtf8(info->lpDirectory),
                                          std::to_string(info->nShow),
                                          Hex(info->fMask)};
    const BOOL result = Answer<BOOL>("ShellExecuteExW", std::move(arguments),
                                     [&](EmulatedPc& pc) { return Outcome(pc, Start(pc, verb, file)); });
    EmulatedPc& pc = EmulatedPc::Current();
    info->hInstApp = reinterpret_cast<HINSTANCE>(result ? started : static_cast<intptr_t>(pc.lastError));
    if (result && (info->fMask & SEE_MASK_NOCLOSEPROCESS) != 0 && pc.facts.shell.tellsProcess) {
        info->hProcess = Processes::Of(pc).Open(pc, {file, pc.clockMilliseconds + pc.facts.shell.milliseconds});
    }
    return result;
}
