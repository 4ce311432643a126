// The tables of the description: every record of the PC with its keys.
#pragma once

#include <string>
#include <vector>

#include "machine/description/record.h"

namespace machine::description {

const RecordType<Pc>& PcType();

// Every key that a description can hold, below the name of the object that holds it ("disk", "partition").
struct KeysOfObject {
    std::string object;
    std::vector<std::string> keys;
};
std::vector<KeysOfObject> AllKeys();

}  // namespace machine::description
