#include "machine/description/checks.h"
#include "machine/description/description.h"
#include "machine/description/parse.h"
#include "machine/description/types.h"

namespace machine {

Pc ReadDescription(const std::string& text, const std::string& fileName) {
    description::Source source(fileName);
    const description::Json json = description::Parse(text, source);
    Pc pc;
    description::ReadPc(description::Node(json, source), pc);
    description::CheckDescription(pc, source);
    return pc;
}

}  // namespace machine
