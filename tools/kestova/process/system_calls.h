// The system calls that the kernel lets this process make.
#pragma once

#include <linux/filter.h>

#include <span>

#include "tools/kestova/process/kept_calls.h"

// A program for the kernel that allows the calls of these rows and answers every other by SIGSYS, made with
// libseccomp when this program is built. Empty in a build without libseccomp.
std::span<const sock_filter> SystemCallFilter(KeptRows rows);

// Stands in a filter for the number of the process, which is known only when it runs.
constexpr uint32_t anyProcess = 0x7E57FACE;

// From here on every call that the filter does not allow ends the program with status 1 and a message; there
// is no way back, and a second filter can only allow less. Does nothing where the kernel has no filters, and
// in a build without them. Throws Failed, also for an empty filter in a build with them.
void AllowOnly(std::span<const sock_filter> filter);
