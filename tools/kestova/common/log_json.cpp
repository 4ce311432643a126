#include "tools/kestova/common/log_json.h"

#include "base/utf.h"

Json LogRecordJson(const LogEntry& entry) {
    return {{"level", entry.level}, {"text", ToUtf8(entry.Text())}};
}
