// How a platform call fails, in words.
#pragma once

#include "machine/calls/call_table.h"

// "FALSE and last error".
const char* FailureWords(machine::FailsWith failsWith);
