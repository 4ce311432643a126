// PCs that are named: machines that come with the tool, and files with descriptions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "machine/facts/machines.h"

// Null if there is none of that name.
const machine::NamedMachine* FindMachine(std::string_view name);

// What a file with a description holds. Throws UnreadablePc, which names it, for one that cannot be read or
// is no text of a description.
std::string ReadDescriptionText(const std::string& name);

// The PC, without opening images that it names. Throws WrongUse, in the name of the option or command that
// asks, for a word that is neither a machine nor a file; UnreadablePc for a file that does not describe a PC.
machine::Pc DescribedPc(const std::string& nameOrFile, const std::string& asker);

// The paths of its images.
std::vector<std::string*> ImagesOf(machine::Pc& pc);

// Makes them, which are relative to the file with the description, relative to the current folder.
void ResolveImages(machine::Pc& pc, const std::string& file);
