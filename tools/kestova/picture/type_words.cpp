#include "tools/kestova/picture/type_words.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace {

struct ForeignType {
    std::string_view type;  // as a report has it
    const char* words;
};

constexpr ForeignType foreignTypes[] = {
    {"0x01", "FAT12"},
    {"0x04", "FAT16"},
    {"0x06", "FAT16"},
    {"0x0B", "FAT32"},
    {"0x0C", "FAT32"},
    {"0x0E", "FAT16"},
    {"0x11", "hidden FAT12"},
    {"0x14", "hidden FAT16"},
    {"0x16", "hidden FAT16"},
    {"0x17", "hidden NTFS"},
    {"0x1B", "hidden FAT32"},
    {"0x1C", "hidden FAT32"},
    {"0x1E", "hidden FAT16"},
    {"0x82", "Linux swap"},
    {"0x83", "Linux"},
    {"0x85", "Linux extended"},
    {"0x8E", "Linux LVM"},
    {"0xA5", "FreeBSD"},
    {"0xAF", "Apple HFS"},
    {"0xEF", "EFI"},
    {"0xFD", "Linux RAID"},
    {"0fc63daf-8483-4772-8e79-3d69d8477de4", "Linux filesystem"},
    {"0657fd6d-a4ab-43c4-84e5-0933c84b4f4f", "Linux swap"},
    {"e6d6d379-f507-44c2-a23c-238f2a3df928", "Linux LVM"},
    {"a19d880f-05fc-4d3b-a006-743f0f84911e", "Linux RAID"},
    {"4f68bce3-e8cd-4db1-96e7-fbcaf984b709", "Linux root (x86-64)"},
    {"933ac7e1-2eb4-4f13-b844-0e14e2aef915", "Linux home"},
    {"bc13c2ff-59e6-4262-a352-b275fd6f7172", "Linux extended boot"},
    {"21686148-6449-6e6f-744e-656564454649", "BIOS boot"},
    {"48465300-0000-11aa-aa11-00306543ecac", "Apple HFS"},
    {"7c3457ef-0000-11aa-aa11-00306543ecac", "Apple APFS"},
    {"e75caf8f-f680-4cee-afa3-b001e56efc2d", "Microsoft Storage Spaces"},
};

}  // namespace

std::string TypeWords(const PartitionReport& partition) {
    const auto foreign = std::ranges::find(foreignTypes, partition.type, &ForeignType::type);
    if (foreign == std::end(foreignTypes) || !partition.typeName.starts_with("unknown "))
        return partition.typeName;
    const bool isMbr = partition.type.starts_with("0x");
    return foreign->words + (isMbr ? " (" + partition.type + ")" : "");
}
