// The manager's private members, for their own tests: an explicit instantiation may name a private member, so
// the class needs no friend for this.
#pragma once

#include <utility>

#include "manager/kestova.h"
#include "vds/vds_partition.h"

namespace internals {

template <typename Tag, typename Tag::Member Value>
struct Opened {
    friend typename Tag::Member Open(Tag) { return Value; }
};

#define OPEN_PRIVATE_MEMBER(tag, type, member) \
    struct tag {                               \
        using Member = type;                   \
        friend Member Open(tag);               \
    };                                         \
    template struct Opened<tag, &Kestova::member>

using VolumeLayer = CVDSPartition* Kestova::*;
using Format = std::basic_string<WCHAR> (Kestova::*)(const WCHAR*, ...);
using MediaTest = int (Kestova::*)(WCHAR, int);
using StatusTest = int (Kestova::*)(int);
using IniSearch = int (Kestova::*)(WCHAR*, DWORD);

OPEN_PRIVATE_MEMBER(VolumeLayerTag, VolumeLayer, m_pVDSPartition);
OPEN_PRIVATE_MEMBER(StringFormatTag, Format, StringFormat);
OPEN_PRIVATE_MEMBER(IsRCVVolumeTag, MediaTest, IsRCVVolume);
OPEN_PRIVATE_MEMBER(CheckMBRRcvprtStatusTag, StatusTest, CheckMBRRcvprtStatus);
OPEN_PRIVATE_MEMBER(GetSystemVolumeIniTag, IniSearch, GetSystemVolumeIni);

#undef OPEN_PRIVATE_MEMBER

// Leaves the object as if its volume layer could not have been made.
inline void DropVolumeLayer(Kestova& kestova) {
    delete std::exchange(kestova.*Open(VolumeLayerTag()), nullptr);
}

}  // namespace internals
