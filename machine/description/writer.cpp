#include <nlohmann/json.hpp>

#include "machine/description/description.h"
#include "machine/description/types.h"

namespace machine {

std::string WriteDescription(const Pc& pc) {
    constexpr int indent = 2;
    description::Json json;
    description::WritePc(description::Output(json), pc);
    try {
        return json.dump(indent) + "\n";
    } catch (const description::Json::type_error&) {
        throw DescriptionError("description", pc.name, "the PC holds text that is not UTF-8");
    }
}

}  // namespace machine
