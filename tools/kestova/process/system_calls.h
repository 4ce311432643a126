// The system calls that the kernel lets this process make.
#pragma once

#include <vector>

// The arguments with which a call is allowed: any; those that open no file for writing; those that map no
// memory that can be executed; those that ask what a terminal is set to; those that have the kernel read a
// disk's table again; those for this process itself.
enum class Only { Any, Reading, WithoutCode, AskingTerminal, RereadingTable, OwnProcess };

struct AllowedCall {
    const char* name;
    Only only = Only::Any;
};

// Whether this build filters them.
bool FiltersSystemCalls();

// From here on every other call ends the program with status 1 and a message; there is no way back, and a
// second list can only be shorter. Calls that this architecture lacks are left out. Does nothing where the
// kernel has no filters, and in a build without libseccomp. Throws Failed.
void AllowOnly(const std::vector<AllowedCall>& calls);
