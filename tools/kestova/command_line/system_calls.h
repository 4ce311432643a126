// The system calls that the kernel lets this process make.
#pragma once

#include <vector>

// Further calls only with arguments of a kind.
enum class Only { Any, Reading, WithoutCode };

struct AllowedCall {
    const char* name;
    Only only =
        Only::Any;  // Reading: opens no file for writing; WithoutCode: maps no memory that can be executed
};

// From here on every other call ends the program with status 1 and a message; there is no way back, and a
// second list can only be shorter. Calls that this architecture lacks are left out. Does nothing where the
// kernel has no filters, and in a build without libseccomp. Throws Failed.
void AllowOnly(const std::vector<AllowedCall>& calls);
