#include "diag/failure_record.h"

LONG LogFailure(int level, const FailureText& failure, LONG result) {
    return LogFailure(level, failure, result, GetLastError());
}

LONG LogFailure(int level, const FailureText& failure, LONG result, DWORD lastError) {
    if (failure.text == nullptr) return result;
    LogRecord record(level);
    record.Text(failure.text);
    switch (failure.codes) {
        case LoggedCodes::None:
            break;
        case LoggedCodes::Result:
            record.Long(result);
            break;
        case LoggedCodes::LastError:
            record.ULong(lastError);
            break;
        case LoggedCodes::LabelledLastError:
            record.Text(failure.lastErrorLabel).ULong(lastError);
            break;
        case LoggedCodes::ResultAndLastError:
            record.Long(result).Text(failure.lastErrorLabel).ULong(lastError);
            break;
    }
    return result;
}

LONG LogFailure(int level, const WCHAR* text, LONG result) {
    LogRecord(level).Text(text);
    return result;
}
