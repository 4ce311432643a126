// Whether a question was answered. The class returns the same for "no" and where it could not find out; the
// platform calls that it made show which of them it was.
#pragma once

#include "tools/kestova/operations/operation_report.h"

// Which call failed on the way to an answer that would be the same without it; empty if the question was
// answered. A question is answered by every result and output that is more than "no", and by a "no" during
// which nothing failed but what fails on a healthy PC.
std::string WhyUnanswered(const OperationReport& report);
