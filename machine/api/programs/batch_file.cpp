#include "machine/api/programs/batch_file.h"

#include <sstream>
#include <vector>

#include "base/text_case.h"
#include "machine/api/registry/reg_tool.h"

namespace machine {

namespace {

std::vector<std::string> Words(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

}  // namespace

void RunBatch(EmulatedPc& pc, std::string_view content) {
    std::istringstream lines{std::string(content)};
    for (std::string line; std::getline(lines, line);) {
        std::vector<std::string> words = Words(line);
        if (words.empty()) continue;
        const std::string command = words.front();
        words.erase(words.begin());
        if (SameName(command, "exit")) return;
        if (!SameName(command, "reg")) continue;
        const uint32_t exitCode = RunReg(pc, words);
        pc.journal.Add(CallRecord{"reg", std::move(words), std::to_string(exitCode)});
    }
}

}  // namespace machine
