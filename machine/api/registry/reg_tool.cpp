#include "machine/api/registry/reg_tool.h"

#include "base/text_case.h"
#include "machine/api/registry/mounted_hives.h"

namespace machine {

namespace {

constexpr uint32_t failed = 1;

// The exit code for the error of what it does.
uint32_t ExitCode(uint32_t error) {
    return error == ERROR_SUCCESS ? 0 : failed;
}

}  // namespace

uint32_t RunReg(EmulatedPc& pc, const std::vector<std::string>& words) {
    if (pc.facts.shell.regFails) return failed;
    if (words.size() == 3 && SameName(words[0], "load")) return ExitCode(MountHive(pc, words[1], words[2]));
    if (words.size() == 2 && SameName(words[0], "unload")) return ExitCode(UnmountHive(pc, words[1]));
    return failed;
}

}  // namespace machine
