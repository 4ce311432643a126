// ShellExecuteExW. This PC runs batch files only: the command interpreter takes the time given in the PC's
// facts, and the effects of the batch appear when that time has passed.

#include "base/text_case.h"
#include "machine/api/call/outcome.h"
#include "machine/api/files/redirection.h"
#include "machine/api/handles/processes.h"
#include "machine/api/programs/batch_file.h"
#include "machine/journal/clock.h"

using namespace machine;

namespace {

constexpr intptr_t started = 42;  // hInstApp is above 32 on success

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

// Error 2 or 3 for a missing file, 1155 for a file that is not a batch file and for a verb other than
// "open", 87 for a record of another size; hInstApp is then the error, otherwise above 32. With
// SEE_MASK_NOCLOSEPROCESS hProcess is the process, which the caller closes, or null if the PC's facts say
// that a batch starts without a process handle.
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
    NoteUnshown("ShellExecuteExW", [&] {
        return Arguments{Presence(info->hwnd),           Presence(info->lpParameters),
                         Presence(info->lpDirectory),    Presence(info->lpIDList),
                         Presence(info->lpClass),        Presence(info->hkeyClass),
                         std::to_string(info->dwHotKey), Presence(info->hMonitor)};
    });
    const BOOL result = Answer<BOOL>("ShellExecuteExW", std::move(arguments),
                                     [&](EmulatedPc& pc) { return Outcome(pc, Start(pc, verb, file)); });
    const Turn turn;
    EmulatedPc& pc = EmulatedPc::Current();
    info->hInstApp = reinterpret_cast<HINSTANCE>(result ? started : static_cast<intptr_t>(pc.lastError));
    if (result && (info->fMask & SEE_MASK_NOCLOSEPROCESS) != 0 && pc.facts.shell.returnsProcess) {
        info->hProcess =
            Processes::Of(pc).Open(pc, {file, pc.clockMilliseconds + pc.facts.shell.milliseconds});
    }
    return result;
}
