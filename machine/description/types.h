// The tables of the description: every record of the PC with its keys.
#pragma once

#include <string>
#include <vector>

#include "machine/description/node.h"
#include "machine/description/output.h"
#include "machine/facts/pc.h"

namespace machine::description {

// Before reading, `pc` holds the defaults. Throws DescriptionError.
void ReadPc(const Node& node, Pc& pc);
void WritePc(Output out, const Pc& pc);
void DescribePc(Output out);

struct DescribedKey {
    std::string name;
    std::string words;
};

// Every key that a description can hold, below the name of the object that holds it ("disk", "partition").
struct KeysOfObject {
    std::string object;
    std::vector<DescribedKey> keys;
};
std::vector<KeysOfObject> AllKeys();

}  // namespace machine::description
