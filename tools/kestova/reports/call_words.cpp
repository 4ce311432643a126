#include "tools/kestova/reports/call_words.h"

const char* FailureWords(machine::FailsWith failsWith) {
    switch (failsWith) {
        case machine::FailsWith::Hresult:
            return "HRESULT";
        case machine::FailsWith::Status:
            return "status";
        case machine::FailsWith::FalseAndLastError:
            return "FALSE and last error";
        case machine::FailsWith::ZeroAndLastError:
            return "0 and last error";
        case machine::FailsWith::NullAndLastError:
            return "null and last error";
        case machine::FailsWith::InvalidHandle:
            return "INVALID_HANDLE_VALUE and last error";
        default:
            return "value";
    }
}
