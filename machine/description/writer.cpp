#include <nlohmann/json.hpp>

#include "machine/description/description.h"
#include "machine/description/types.h"

namespace machine {

std::string WriteDescription(const Pc& pc, Layout layout) {
    const int indent = layout == Layout::Indented ? 2 : -1;
    description::Json json;
    description::WritePc(description::Output(json), pc);
    try {
        return json.dump(indent) + "\n";
    } catch (const description::Json::type_error&) {
        throw DescriptionError("description", pc.name, "the PC holds text that is not UTF-8");
    }
}

std::string DescriptionSchema() {
    constexpr int indent = 2;
    description::Json json;
    const description::Output out(json);
    description::DescribePc(out);
    out.Key("$schema").Text("https://json-schema.org/draft/2020-12/schema");
    out.Key("title").Text("The description of a PC");
    return json.dump(indent) + "\n";
}

}  // namespace machine
