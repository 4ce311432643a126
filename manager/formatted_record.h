// Records of messages that are formatted first.
#pragma once

#include "diag/log_record.h"

// Writes the message. It takes the finished text, so that no record has begun if memory runs out before.
inline void TraceString(const WideString& text) {
    LogRecord(LOG_LEVEL_TRACE).String(text);
}
