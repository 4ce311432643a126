// Whether a question was answered. The class returns the same for "no" and for "it could not be told"; the
// platform calls that it made tell them apart.
#pragma once

#include "tools/kestova/operations/operation_report.h"

// Which call failed on the way to an answer that would be the same without it; empty if the question was
// answered. A question is answered by every result and output that says more than "no", and by a "no" during
// which nothing failed but what fails on a healthy PC.
std::string WhyUnanswered(const OperationReport& report);
