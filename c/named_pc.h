// The PC that a program opens by a name.
#pragma once

#include <string>

#include "machine/facts/pc.h"

namespace c_interface {

// A machine that comes with the library, or what a file describes; in a library that was built to open disk
// images one of these too, or a PC that is described on them: the images stay as they are, and what is
// written is kept in memory. Throws, in the name of the function or variable that asks, what the tool throws
// for such a word; Refusal for images in a library that does not open them.
machine::Pc NamedPc(const std::string& nameOrFile, const std::string& asker);

}  // namespace c_interface
