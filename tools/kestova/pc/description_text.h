// Files with descriptions of PCs.
#pragma once

#include <string>

// What the file holds. Throws UnreadablePc, which names it, for one that cannot be read or is no text of a
// description.
std::string ReadDescriptionText(const std::string& name);
