// What this build is.
#pragma once

#include <string>

// The version on a line of its own, then how it was built, what it can do, and what is linked with which
// licence.
std::string VersionText();
