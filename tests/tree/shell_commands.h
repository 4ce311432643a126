// The commands in a shell script.
#pragma once

#include <set>
#include <string>

// The names that a script gives as commands, without a folder: keywords, builtins and functions too. Looked
// into are substitutions, and texts after -c; not looked into is what a command gets as arguments, such as
// that of xargs.
std::set<std::string> CommandsOf(const std::string& script);

// The functions that it defines.
std::set<std::string> FunctionsOf(const std::string& script);
