// What each command does, for the table in commands.cpp: it works as the line says, and returns the exit
// status.
#pragma once

#include "tools/kestova/command_line/command_line.h"

namespace commands {

// Questions about a PC.
int Status(const CommandLine& line);
int Letters(const CommandLine& line);
int Files(const CommandLine& line);
int Check(const CommandLine& line);
int Report(const CommandLine& line);
int Capture(const CommandLine& line);

// Operations of the class.
int Boot(const CommandLine& line);
int Call(const CommandLine& line);
int Run(const CommandLine& line);
int Replay(const CommandLine& line);

// What is done with images themselves.
int Recover(const CommandLine& line);
int RepairTables(const CommandLine& line);
int Undo(const CommandLine& line);

// Descriptions of PCs.
int Validate(const CommandLine& line);
int Compare(const CommandLine& line);
int Generate(const CommandLine& line);

// Many PCs.
int Survey(const CommandLine& line);
int Conform(const CommandLine& line);

// What the program and its emulated PC come with.
int ListOperations(const CommandLine& line);
int ListPcs(const CommandLine& line);
int ListCalls(const CommandLine& line);
int Help(const CommandLine& line);
int Completion(const CommandLine& line);

}  // namespace commands
