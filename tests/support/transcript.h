// The log of an operation, compared whole with what tests/transcripts expects.
#pragma once

#include <string>

#include "machine/journal/journal.h"

// Every record in order, a line each (record_line.h). Fails the running test for a record that does not end
// with exactly one empty text.
std::string Transcript(const machine::Journal& journal);

// Compares the folded log (folded_log.h) with the section of the running test in
// tests/transcripts/CLASS/FUNCTION.txt, of the function that logs first, and each folded call with the
// sections of its own function. A test with several transcripts gives each a part. KESTOVA_RECORD=FOLDER in
// the environment writes these sections below that folder instead; record.py in tests/transcripts does so for
// all tests. Read what it wrote as critically as code.
void ExpectTranscript(const machine::Journal& journal, const std::string& part = "");
