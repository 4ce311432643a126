#include "diag/failure_record.h"

void RecordFailure(int level, const FailureText& failure, LONG result, DWORD lastError) {
    if (failure.text == nullptr) return;
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
}
