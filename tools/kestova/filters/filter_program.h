// Filters of system calls, made with libseccomp when the program is built.
#pragma once

#include <linux/filter.h>

#include <span>
#include <vector>

#include "tools/kestova/process/kept_calls.h"

// A program for the kernel that allows these calls, with the arguments that they say, and answers every other
// by SIGSYS; `anyProcess` stands in it for the process that it will be for. Calls that this architecture
// lacks are left out. Throws std::system_error.
std::vector<sock_filter> FilterProgram(std::span<const AllowedCall> calls);
