#include "tools/kestova/passage/change_stop.h"

#include <utility>

void ChangeStop::Refuse(std::string change) {
    if (!first_) first_ = std::move(change);
}

std::optional<std::string> ChangeStop::TakeFirst() {
    return std::exchange(first_, std::nullopt);
}
