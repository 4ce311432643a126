#include "machine/media/volumes/ntfs/ntfs_record.h"

#include <cstdint>

#include "machine/media/volumes/ntfs/ntfs_library.h"

namespace machine {

namespace {

constexpr uint32_t alignment = 8;
constexpr uint32_t residentHeader = 24;
constexpr uint32_t nonResidentHeader = 64;

// Whether that many bytes at `offset` are behind the header and inside the attribute.
bool IsInside(uint32_t offset, uint32_t length, uint32_t header, uint32_t attribute) {
    return offset >= header && offset <= attribute && length <= attribute - offset;
}

bool IsSound(const ATTR_RECORD& attribute, uint32_t length) {
    if (length < residentHeader) return false;
    const bool isResident = attribute.non_resident == 0;
    const uint32_t header = isResident ? residentHeader : nonResidentHeader;
    const uint32_t nameBytes = attribute.name_length * 2U;
    if (nameBytes != 0 && !IsInside(le16_to_cpu(attribute.name_offset), nameBytes, header, length))
        return false;
    if (!isResident) return IsInside(le16_to_cpu(attribute.mapping_pairs_offset), 1, header, length);
    const uint32_t value = le16_to_cpu(attribute.value_offset);
    return value % alignment == 0 && IsInside(value, le32_to_cpu(attribute.value_length), header, length);
}

}  // namespace

bool IsSound(const ntfs_inode& inode) {
    const auto* const record = reinterpret_cast<const char*>(inode.mrec);
    const uint32_t used = le32_to_cpu(inode.mrec->bytes_in_use);
    uint32_t at = le16_to_cpu(inode.mrec->attrs_offset);
    if (used > inode.vol->mft_record_size || at % alignment != 0) return false;
    while (at <= used && used - at >= sizeof(uint64_t)) {
        const auto& attribute = *reinterpret_cast<const ATTR_RECORD*>(record + at);
        if (attribute.type == AT_END) return true;
        const uint32_t length = le32_to_cpu(attribute.length);
        if (length % alignment != 0 || length > used - at || !IsSound(attribute, length)) return false;
        at += length;
    }
    return false;
}

}  // namespace machine
