// Suggestions for a word that nobody knows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The word that `word` was probably meant to be: the one with the fewest differing letters, about a third of
// them at most, whatever their case; else the first that contains it whole, if it has four letters or more.
// Empty when nothing is near.
std::string Nearest(std::string_view word, const std::vector<std::string>& words);
