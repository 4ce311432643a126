// The commands of the program as a table.
#pragma once

#include <string>
#include <vector>

#include "tools/kestova/command_line/command_line.h"

struct Command {
    const char* name;
    const char* arguments;  // as help shows them
    const char* summary;
    size_t fewest;  // arguments
    size_t most;
    bool usesPc;
    bool traces;
    int (*run)(const CommandLine& line);  // returns the exit status
};

const std::vector<Command>& Commands();

// What the exit statuses of `boot` mean, in lines of at most that many columns.
std::string BootStatuses(size_t columns);

// Whether an option has an effect on the command.
bool Uses(const Command& command, const std::string& option);

// Whether help and completion name the option for the command: not those that the command accepts, as scripts
// give them to every command, while only one that changes the PC obeys them.
bool Concerns(const Command& command, const std::string& option);

// Whether the command can read a registry hive.
bool ReadsHives(const CommandLine& line);

// Whether the command leaves its work to processes that it starts, each of which gives up what it does not
// need.
bool StartsProcesses(const CommandLine& line);

// Throws WrongUse for an unknown command, or none.
const Command& CommandOfName(const std::string& name);

// Throws WrongUse for an unknown command, a wrong number of arguments, or an option that has
// no effect on the command.
const Command& FindCommand(const CommandLine& line);
