// Random PCs as descriptions.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

// PCs `first` to `first + count - 1` of a seed.
struct GeneratedPcs {
    uint64_t seed = 1;
    uint64_t first = 1;
    uint64_t count = 1;
};

// A single PC as a description, several as one a line.
void ShowGenerated(const GeneratedPcs& pcs, std::ostream& output);

// Writes pc-000001.json and so on, by the numbers of the PCs, into the folder, which is made if it is
// missing. Throws WrongUse, with nothing written, if one of the files exists and may not be overwritten;
// Failed if one cannot be written, when those before it are there.
void WriteGenerated(const GeneratedPcs& pcs, const std::string& folder, bool overwrite);
