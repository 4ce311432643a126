// Log records in JSON.
#pragma once

#include "logging/logging.h"
#include "tools/kestova/common/json.h"

// A record as {"level", "text"}.
Json LogRecordJson(const LogEntry& entry);
