#include "tools/kestova/common/partition_words.h"

#include "base/guid.h"
#include "base/hexadecimal.h"
#include "platform/partition_types.h"

std::string MbrTypeWords(BYTE type) {
    const char* const words = PartitionTypeOf(type).words;
    return std::string(words != nullptr ? words : "unknown") + " (" + Hex(type, 2) + ")";
}

std::string GptTypeWords(const GUID& type) {
    const char* const words = PartitionTypeOf(type).words;
    return words != nullptr ? words : "unknown (" + GuidText(type) + ")";
}
