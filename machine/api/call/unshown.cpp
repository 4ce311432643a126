#include "machine/api/call/unshown.h"

#include <map>

namespace machine {

namespace {

struct Unshown {
    std::map<std::string, std::vector<std::vector<std::string>>> calls;
};

}  // namespace

void NoteUnshown(const std::string& call, std::vector<std::string> arguments) {
    EmulatedPc::Current().State<Unshown>().calls[call].push_back(std::move(arguments));
}

std::vector<std::vector<std::string>> UnshownArguments(EmulatedPc& pc, const std::string& call) {
    return pc.State<Unshown>().calls[call];
}

}  // namespace machine
