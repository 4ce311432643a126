#include "diag/failure_record.h"

void RecordFailure(int level, const FailureText& failure, LONG result, DWORD lastError) {
    if (failure.text == nullptr) return;
    const LoggedCodes codes = failure.codes;
    LogRecord record(level);
    record.Text(failure.text);
    const bool both = codes == LoggedCodes::ResultAndLastError;
    if (codes == LoggedCodes::Result || both) record.Long(result);
    if (codes == LoggedCodes::LabelledLastError || both) record.Text(failure.lastErrorLabel);
    if (codes == LoggedCodes::LastError || codes == LoggedCodes::LabelledLastError || both)
        record.ULong(lastError);
}
