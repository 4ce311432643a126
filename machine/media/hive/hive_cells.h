// The division of a registry hive into bins and cells.
#pragma once

#include <string>

namespace machine {

// Makes damaged headers of bins and lengths of cells fit what is around them, because libhivex refuses the
// whole hive for one of them. A cell with an impossible length then ends where the next one begins. Contents
// of cells stay as they are; a file that is shorter than its header says is left alone.
void MendCells(std::string& hive);

}  // namespace machine
