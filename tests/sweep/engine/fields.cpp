#include "tests/sweep/engine/fields.h"

namespace sweep {

Row Split(const std::string& line) {
    Row fields(1);
    for (const char unit : line) {
        if (unit == '\t') {
            fields.emplace_back();
        } else {
            fields.back() += unit;
        }
    }
    return fields;
}

std::string Joined(const Row& fields) {
    std::string line;
    for (const std::string& field : fields)
        line += (line.empty() ? "" : "\t") + field;
    return line;
}

}  // namespace sweep
