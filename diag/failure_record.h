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

// Writes the record of a failed call with that result and last error.
void RecordFailure(int level, const FailureText& failure, LONG result, DWORD lastError);

// Writes the record and returns the result, with a last error that the caller read before it called something
// else.
template <typename Result>
Result LogFailure(int level, const FailureText& failure, Result result, DWORD lastError) {
    RecordFailure(level, failure, static_cast<LONG>(result), lastError);
    return result;
}

// The same with the calling thread's last error: call it right after the failed call.
template <typename Result>
Result LogFailure(int level, const FailureText& failure, Result result) {
    return LogFailure(level, failure, result, GetLastError());
}

// Writes a record of text alone and returns the result.
template <typename Result>
Result LogFailure(int level, const WCHAR* text, Result result) {
    LogRecord(level).Text(text);
    return result;
}
