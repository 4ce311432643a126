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
