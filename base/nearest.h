// Suggestions for a misspelt word.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The word that is most similar to `word`, ignoring case: the one at the smallest edit distance, which may be
// at most about a third of the length; else, for four letters or more, the first that contains it. Empty if
// there is none.
std::string Nearest(std::string_view word, const std::vector<std::string>& words);
