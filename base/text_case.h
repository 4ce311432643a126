// Names without regard to case, as the platform compares them; only the letters A to Z have two cases here.
#pragma once

#include <string>
#include <string_view>

std::string UpperCase(std::string_view text);
bool SameName(std::string_view left, std::string_view right);
