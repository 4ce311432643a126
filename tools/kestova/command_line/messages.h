// What the program says on standard error. What a terminal would obey is shown instead.
#pragma once

#include <string>
#include <vector>

#include "tools/kestova/command_line/command_line.h"
#include "tools/kestova/common/progress.h"
#include "tools/kestova/operations/operation_report.h"

// Nothing if it is empty.
void ShowMessage(const std::string& message);

// What is good to know, but no error: nothing with --quiet.
void ShowNote(const CommandLine& line, const std::string& note);
void ShowNotes(const CommandLine& line, const std::vector<std::string>& notes);
void ShowRemarks(const CommandLine& line, const std::vector<Finding>& remarks);

// What makes the program end with that status. With --json it is an object of its own line.
void ShowError(bool json, const std::string& message, int status);
std::string ErrorText(bool json, const std::string& message, int status);

// The same for what could not be found out; Done if `problem` is empty, else Failure.
int ShowProblem(const CommandLine& line, const std::string& problem);

// Standard error for the progress of something long; nowhere unless that is a terminal, and for people.
ProgressPlace PlaceOfProgress(const CommandLine& line);
