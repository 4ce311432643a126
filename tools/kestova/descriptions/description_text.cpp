#include "tools/kestova/descriptions/description_text.h"

#include "machine/description/description.h"
#include "tools/kestova/common/errors.h"

std::string DescriptionText(const machine::Pc& pc) {
    try {
        return machine::WriteDescription(pc);
    } catch (const machine::DescriptionError& error) {
        throw Failed(error.what());
    }
}

std::vector<std::string> MistakesIn(const std::string& text) {
    std::vector<std::string> lines;
    for (const machine::Mistake& mistake : machine::FindMistakes(text))
        lines.push_back(mistake.place + ": " + mistake.what);
    return lines;
}
