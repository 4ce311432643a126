// Failure records: the one way in which every layer reports a failed call.
#pragma once

#include "diag/log_record.h"

// What follows the text of a failure record.
enum class LoggedCodes {
    None,
    Result,              // the result
    LastError,           // the last error
    LabelledLastError,   // the label, then the last error
    ResultAndLastError,  // the result, then the label, then the last error
};

struct FailureText {
    const WCHAR* text = nullptr;  // null: no record is written
    LoggedCodes codes = LoggedCodes::None;
    const WCHAR* lastErrorLabel = TEXT(" GetLastError = ");
};

// Writes the record and returns the result. Reads the calling thread's last error first, so call it right
// after the failed call.
LONG LogFailure(int level, const FailureText& failure, LONG result);
// The same with a last error that the caller read before it called something else.
LONG LogFailure(int level, const FailureText& failure, LONG result, DWORD lastError);
// Writes a record of text alone and returns the result.
LONG LogFailure(int level, const WCHAR* text, LONG result);
