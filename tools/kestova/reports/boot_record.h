// SystemVolume.ini on the recovery partition, as `boot system` will read it.
#pragma once

#include <optional>

#include "tools/kestova/operations/session.h"
#include "tools/kestova/reports/status.h"

// Nothing where there is no place for it: without an internal MBR disk, a recovery partition on that, or a
// volume on it that can be looked into.
std::optional<RecordReport> ReadRecord(const StatusReport& status, Session& session);
