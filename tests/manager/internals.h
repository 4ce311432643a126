// The manager's private members, for their own tests: an explicit instantiation may name a private member, so
// the class needs no friend for this.
#pragma once

#include <type_traits>
#include <utility>

#include "manager/kestova.h"

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

using DiskStyle = THardDiskType Kestova::*;
using Letter = WCHAR Kestova::*;
using PartitionNumber = int Kestova::*;
using ReservedObject = CReservedObject* Kestova::*;
using EncryptionLayer = CEncryptVolume* Kestova::*;
using VolumeLayer = CVDSPartition* Kestova::*;
using Format = std::basic_string<WCHAR> (Kestova::*)(const WCHAR*, ...);
using LetterQuery = int (Kestova::*)(WCHAR);
using NameQuery = int (Kestova::*)(WCHAR, WCHAR*);
using LetterSearch = WCHAR (Kestova::*)();
using MediaTest = int (Kestova::*)(WCHAR, int);
using StatusTest = int (Kestova::*)(int);
using Recognition = int (Kestova::*)(int, int, int&);
using PartitionSearch = int (Kestova::*)(int&, int&, int&);
using IniSearch = int (Kestova::*)(WCHAR*, DWORD);
using CommandRun = int (Kestova::*)(const WCHAR*);
using HiveSwitch = int (Kestova::*)();
using KeyQuery = int (Kestova::*)(WCHAR*);
using Translation = int (Kestova::*)(WCHAR, WCHAR&);
using MapCleaning = void (Kestova::*)();
using LetterMap = std::map<WCHAR, tagDeviceData_t> Kestova::*;

OPEN_PRIVATE_MEMBER(DiskStyleTag, DiskStyle, m_HardDiskType);
OPEN_PRIVATE_MEMBER(ReservedTag, Letter, m_wReserved);
OPEN_PRIVATE_MEMBER(FirstReservedTag, ReservedObject, m_pReserved1);
OPEN_PRIVATE_MEMBER(SecondReservedTag, ReservedObject, m_pReserved2);
OPEN_PRIVATE_MEMBER(WinRELetterTag, Letter, m_cWinREDriveLetter);
OPEN_PRIVATE_MEMBER(RecoveryLetterTag, Letter, m_cRcvDriveLetter);
OPEN_PRIVATE_MEMBER(WinRENumberTag, PartitionNumber, m_iWinREPartNumber);
OPEN_PRIVATE_MEMBER(RecoveryNumberTag, PartitionNumber, m_iRcvPartNumber);
OPEN_PRIVATE_MEMBER(EncryptionLayerTag, EncryptionLayer, m_pEncryptVolume);
OPEN_PRIVATE_MEMBER(VolumeLayerTag, VolumeLayer, m_pVDSPartition);
OPEN_PRIVATE_MEMBER(StringFormatTag, Format, StringFormat);
OPEN_PRIVATE_MEMBER(GetDiskNumberTag, LetterQuery, GetDiskNumber);
OPEN_PRIVATE_MEMBER(GetPartNumberTag, LetterQuery, GetPartNumber);
OPEN_PRIVATE_MEMBER(GetVolumeNameTag, NameQuery, GetVolumeName);
OPEN_PRIVATE_MEMBER(IsRCVVolumeTag, MediaTest, IsRCVVolume);
OPEN_PRIVATE_MEMBER(IsWinREVolumeTag, LetterQuery, IsWinREVolume);
OPEN_PRIVATE_MEMBER(IsOSVolumeTag, LetterQuery, IsOSVolume);
OPEN_PRIVATE_MEMBER(GetOSVolumeTag, LetterSearch, GetOSVolume);
OPEN_PRIVATE_MEMBER(CheckMBRRcvprtStatusTag, StatusTest, CheckMBRRcvprtStatus);
OPEN_PRIVATE_MEMBER(IsRecoveryPartitionTag, Recognition, IsRecoveryPartition);
OPEN_PRIVATE_MEMBER(IsExistRecoveryPartitionTag, PartitionSearch, IsExistRecoveryPartition);
OPEN_PRIVATE_MEMBER(IsWinREPartitionTag, Recognition, IsWinREPartition);
OPEN_PRIVATE_MEMBER(IsExistWinREPartitionTag, PartitionSearch, IsExistWinREPartition);
OPEN_PRIVATE_MEMBER(GetSystemVolumeIniTag, IniSearch, GetSystemVolumeIni);
OPEN_PRIVATE_MEMBER(LoadRegistryTag, CommandRun, LoadRegistry);
OPEN_PRIVATE_MEMBER(LoadWindowsRegistryTag, HiveSwitch, LoadWindowsRegistry);
OPEN_PRIVATE_MEMBER(UnloadWindowsRegistryTag, HiveSwitch, UnloadWindowsRegistry);
OPEN_PRIVATE_MEMBER(ReadRegistryTag, KeyQuery, ReadRegistry);
OPEN_PRIVATE_MEMBER(TransformDriveLetterTag, Translation, TransformDriveLetter);
OPEN_PRIVATE_MEMBER(CleanMapTag, MapCleaning, CleanMap);
OPEN_PRIVATE_MEMBER(WinDriveMapTag, LetterMap, m_mapWinDrive);
OPEN_PRIVATE_MEMBER(PEDriveMapTag, LetterMap, m_mapPEDrive);

#undef OPEN_PRIVATE_MEMBER

// While it lives the object is as if that layer could not have been made; afterwards it owns the layer again.
template <typename Tag>
class Without {
  public:
    explicit Without(Kestova& kestova)
        : layer_(kestova.*Open(Tag())), kept_(std::exchange(layer_, nullptr)) {}
    ~Without() { layer_ = kept_; }
    Without(const Without&) = delete;
    Without& operator=(const Without&) = delete;

  private:
    using Layer = std::remove_reference_t<decltype(std::declval<Kestova&>().*Open(Tag()))>;

    Layer& layer_;
    Layer kept_;
};
using WithoutEncryptionLayer = Without<EncryptionLayerTag>;
using WithoutVolumeLayer = Without<VolumeLayerTag>;

}  // namespace internals
