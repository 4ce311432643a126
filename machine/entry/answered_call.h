// A function that answers a platform call, by the call's published name.
#pragma once

#include <string_view>

namespace machine {

struct AnsweredCall {
    std::string_view name;
    const void* function;
};

}  // namespace machine
