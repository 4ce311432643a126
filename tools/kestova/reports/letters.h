// The letters of the installed Windows, and what each stands for here.
#pragma once

#include <string>

#include "tools/kestova/common/json.h"
#include "tools/kestova/operations/session.h"

// {"letters": [{"letter", "disk", "partition", "here"}, ...]}: disk, partition and the running system's
// letter are null where they are not known. Then "problem" when the letters could not all be told.
Json ReadLetters(Session& session);

// The same for people.
std::string LettersText(const Json& letters);
