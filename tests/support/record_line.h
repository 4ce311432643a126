// One record of the log as a line of text, and the parts of it that tests work with.
#pragma once

#include <string>

#include "logging/logging.h"

// The level, every text as it is (a tab as \t) and every value in braces with the kind of its append:
// 4 Kestova::SetActive\tEnd. iRet = {int 1}. Kinds: {int 1}, {long -1}, {ulong 5}, {char C}, {string ...}.
std::string LineOf(const LogEntry& record);

// The function that the message names, Class::Function; empty if it names none.
std::string FunctionOf(const LogEntry& record);

// The values, without the texts around them: {int 1} {long -1}. A text directly behind the message or behind
// a label is a value too: {text D:\Boot}.
std::string ValuesOf(const LogEntry& record);

// Whether the text has the word itself, not as a part of a longer one.
bool HasWord(const std::string& text, const std::string& word);

// The message says that its function starts, or ends.
bool SaysStart(const LogEntry& record);
bool SaysEnd(const LogEntry& record);
