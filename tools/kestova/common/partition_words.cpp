#include "tools/kestova/common/partition_words.h"

#include <algorithm>
#include <iterator>

#include "base/guid.h"
#include "base/hexadecimal.h"
#include "platform/partition_types.h"

namespace {

struct TypeWords {
    BYTE mbr;         // MBR_ID_NONE for GPT types
    const GUID* gpt;  // null for MBR IDs
    const char* words;
};

constexpr TypeWords types[] = {
    {MBR_ID_NTFS, nullptr, "NTFS"},
    {MBR_ID_OEM_RECOVERY, nullptr, "OEM recovery"},
    {MBR_ID_HIDDEN_RECOVERY, nullptr, "hidden recovery"},
    {MBR_ID_CACHE, nullptr, "cache"},
    {MBR_ID_BIOS_HIBERNATION, nullptr, "hibernation"},
    {MBR_ID_NONE, &ORVOBOOT_GUID, "maker's boot"},
    {MBR_ID_NONE, &EXPCACHE_PARTITION_GUID, "cache"},
    {MBR_ID_NONE, &PARTITION_SYSTEM_GUID, "EFI system"},
    {MBR_ID_NONE, &PARTITION_MSFT_RESERVED_GUID, "Microsoft reserved"},
    {MBR_ID_NONE, &PARTITION_BASIC_DATA_GUID, "basic data"},
    {MBR_ID_NONE, &PARTITION_MSFT_RECOVERY_GUID, "Windows recovery"},
};

template <typename Matches>
std::string Words(Matches matches, const char* otherwise) {
    const auto found = std::find_if(std::begin(types), std::end(types), matches);
    return found != std::end(types) ? found->words : otherwise;
}

}  // namespace

std::string MbrTypeWords(BYTE type) {
    const auto matches = [&](const TypeWords& row) { return row.gpt == nullptr && row.mbr == type; };
    return Words(matches, "unknown") + " (" + Hex(type, 2) + ")";
}

std::string GptTypeWords(const GUID& type) {
    const auto matches = [&](const TypeWords& row) {
        return row.gpt != nullptr && IsSameGuid(*row.gpt, type);
    };
    return Words(matches, ("unknown (" + GuidText(type) + ")").c_str());
}
