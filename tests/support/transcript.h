// The log of an operation as text to compare whole: a line a record, its level, the literal as it stands (a
// tab as \t), every value in braces with the kind of its append: {int 1}, {long -1}, {ulong 5}, {char C},
// {string ...}.
#pragma once

#include <string>

#include "machine/journal/journal.h"

// Fails the running test for a record that does not end with exactly one empty text.
std::string Transcript(const machine::Journal& journal);

// Compares with tests/transcripts/NAME.txt. KESTOVA_RECORD=1 in the environment writes the file instead: read
// what it wrote as critically as code.
void ExpectTranscript(const machine::Journal& journal, const std::string& name);
