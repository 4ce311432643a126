#include "machine/description/output.h"

#include <nlohmann/json.hpp>

namespace machine::description {

void Output::Null() const {
    *value_ = nullptr;
}

void Output::Text(const std::string& text) const {
    *value_ = text;
}

void Output::Flag(bool flag) const {
    *value_ = flag;
}

void Output::Number(uint64_t number) const {
    *value_ = number;
}

void Output::NegativeNumber(int64_t number) const {
    *value_ = number;
}

void Output::Object() const {
    *value_ = Json::object();
}

Output Output::Key(std::string_view key) const {
    return Output((*value_)[std::string(key)], whole_);
}

void Output::List() const {
    *value_ = Json::array();
}

Output Output::Entry() const {
    value_->push_back(nullptr);
    return Output(value_->back(), whole_);
}

bool IsJsonText(const std::string& text) {
    try {
        Json(text).dump();
        return true;
    } catch (const Json::type_error&) {
        return false;
    }
}

}  // namespace machine::description
