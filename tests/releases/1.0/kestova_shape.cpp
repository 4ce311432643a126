// The shape that applications of this release were compiled with: the types of all members of class Kestova,
// private ones too, where its data stands, and the records and enumerations of its operations, for 64 and 32
// bits. Every build compiles this file; it generates no code. What it asserts stays.

#include <cstddef>
#include <type_traits>

#include "manager/kestova.h"

namespace {

constexpr size_t pointer = sizeof(void*);

// An explicit instantiation may name private members.
template <auto Member, typename Type>
struct Declares {
    static_assert(std::is_same_v<decltype(Member), Type>);
};

template <size_t Offset, size_t Expected>
struct Stands {
    static_assert(Offset == Expected);
};

// --- the functions ---

static_assert(std::is_default_constructible_v<Kestova> &&
              !std::is_trivially_default_constructible_v<Kestova>);
static_assert(std::is_copy_constructible_v<Kestova> && !std::is_trivially_copy_constructible_v<Kestova>);
static_assert(std::is_copy_assignable_v<Kestova> && !std::is_trivially_copy_assignable_v<Kestova>);
static_assert(std::is_destructible_v<Kestova> && !std::is_trivially_destructible_v<Kestova>);
static_assert(!std::is_polymorphic_v<Kestova>);

template struct Declares<&Kestova::operator=, Kestova& (Kestova::*)(const Kestova&)>;
template struct Declares<&Kestova::Initialize, int (Kestova::*)(bool)>;
template struct Declares<&Kestova::GetFirstInternalDriveNumber, int (Kestova::*)()>;
template struct Declares<&Kestova::GetDiskStyle, int (Kestova::*)(THardDiskType&)>;
template struct Declares<&Kestova::GetCurrentDiskType, int (Kestova::*)(tagDiskTypeEnum&)>;
template struct Declares<&Kestova::IsDynamic, int (Kestova::*)()>;
template struct Declares<&Kestova::IsEFIBootSystem, int (Kestova::*)()>;
template struct Declares<&Kestova::GetDriveLetter, WCHAR (Kestova::*)(int, int)>;
template struct Declares<&Kestova::IsNeedHidePartition, int (Kestova::*)(int, int)>;
template struct Declares<&Kestova::IsBIOSHibernationPartition, int (Kestova::*)(int, int)>;
template struct Declares<&Kestova::SetBIOSHibernationPartitionID, int (Kestova::*)(int)>;
template struct Declares<&Kestova::GetActivePartitionNumber, int (Kestova::*)()>;
template struct Declares<&Kestova::SetActive, int (Kestova::*)(int)>;
template struct Declares<&Kestova::ClearActive, int (Kestova::*)()>;
template struct Declares<&Kestova::GetFactoryPrtDriveLetter, int (Kestova::*)(WCHAR&)>;
template struct Declares<&Kestova::GetRCVDISC, WCHAR (Kestova::*)()>;
template struct Declares<&Kestova::GetRCVUFD, WCHAR (Kestova::*)()>;
template struct Declares<&Kestova::IsWindowsRE, int (Kestova::*)(WCHAR)>;
template struct Declares<&Kestova::IsVistaOS, int (Kestova::*)(WCHAR)>;
template struct Declares<&Kestova::IsCachePartitionForExpCacheExist, int (Kestova::*)()>;
template struct Declares<&Kestova::ActiveOrvoBootPartition, int (Kestova::*)(WCHAR&)>;
template struct Declares<&Kestova::DisableOrvoBootPartition, int (Kestova::*)()>;
template struct Declares<&Kestova::ActiveGPTSystemPartition, int (Kestova::*)(WCHAR&)>;
template struct Declares<&Kestova::DisableGPTSystemPartition, int (Kestova::*)()>;
template struct Declares<&Kestova::AssignRecoveryPartition, int (Kestova::*)(WCHAR&)>;
template struct Declares<&Kestova::AssignWinREPartition, int (Kestova::*)(WCHAR&)>;
template struct Declares<&Kestova::RemoveRecoveryPartition, void (Kestova::*)()>;
template struct Declares<&Kestova::RemoveWinREPartition, void (Kestova::*)()>;
template struct Declares<&Kestova::IsExistRcvprt, int (Kestova::*)()>;
template struct Declares<&Kestova::IsExistEncryptVolume, int (Kestova::*)()>;
template struct Declares<&Kestova::GetEncryptVolume, WCHAR (Kestova::*)()>;
template struct Declares<&Kestova::GetAllEncryptVolume, int (Kestova::*)(WCHAR*, DWORD)>;
template struct Declares<&Kestova::GetBitLockerSystemInfo, DWORD (Kestova::*)(int&, int&, WCHAR&)>;
template struct Declares<&Kestova::GetVistaOSInfo, DWORD (Kestova::*)(int&, int&, WCHAR&)>;
template struct Declares<&Kestova::GetWinDriveLetters, int (Kestova::*)(tagDriveInfo_t*, int)>;
template struct Declares<&Kestova::SetRcvprtActive, int (Kestova::*)()>;
template struct Declares<&Kestova::SetSystemActive, int (Kestova::*)()>;
template struct Declares<&Kestova::SetPOneActive, int (Kestova::*)()>;
template struct Declares<&Kestova::SetPTwoActive, int (Kestova::*)()>;

template struct Declares<&Kestova::StringFormat, std::basic_string<WCHAR> (Kestova::*)(const WCHAR*, ...)>;
template struct Declares<&Kestova::GetDiskNumber, int (Kestova::*)(WCHAR)>;
template struct Declares<&Kestova::GetPartNumber, int (Kestova::*)(WCHAR)>;
template struct Declares<&Kestova::GetVolumeName, int (Kestova::*)(WCHAR, WCHAR*)>;
template struct Declares<&Kestova::IsRCVVolume, int (Kestova::*)(WCHAR, int)>;
template struct Declares<&Kestova::IsWinREVolume, int (Kestova::*)(WCHAR)>;
template struct Declares<&Kestova::IsOSVolume, int (Kestova::*)(WCHAR)>;
template struct Declares<&Kestova::GetOSVolume, WCHAR (Kestova::*)()>;
template struct Declares<&Kestova::CheckMBRRcvprtStatus, int (Kestova::*)(int)>;
template struct Declares<&Kestova::IsRecoveryPartition, int (Kestova::*)(int, int, int&)>;
template struct Declares<&Kestova::IsExistRecoveryPartition, int (Kestova::*)(int&, int&, int&)>;
template struct Declares<&Kestova::IsWinREPartition, int (Kestova::*)(int, int, int&)>;
template struct Declares<&Kestova::IsExistWinREPartition, int (Kestova::*)(int&, int&, int&)>;
template struct Declares<&Kestova::GetSystemVolumeIni, int (Kestova::*)(WCHAR*, DWORD)>;
template struct Declares<&Kestova::LoadRegistry, int (Kestova::*)(const WCHAR*)>;
template struct Declares<&Kestova::LoadWindowsRegistry, int (Kestova::*)()>;
template struct Declares<&Kestova::UnloadWindowsRegistry, int (Kestova::*)()>;
template struct Declares<&Kestova::ReadRegistry, int (Kestova::*)(WCHAR*)>;
template struct Declares<&Kestova::TransformDriveLetter, int (Kestova::*)(WCHAR, WCHAR&)>;
template struct Declares<&Kestova::CleanMap, void (Kestova::*)()>;

// --- the data ---

using DriveLetterMap = std::map<WCHAR, tagDeviceData_t>;

template struct Declares<&Kestova::m_HardDiskType, THardDiskType Kestova::*>;
template struct Declares<&Kestova::m_wReserved, WCHAR Kestova::*>;
template struct Declares<&Kestova::m_pEncryptVolume, CEncryptVolume * Kestova::*>;
template struct Declares<&Kestova::m_pVDSPartition, CVDSPartition * Kestova::*>;
template struct Declares<&Kestova::m_pReserved1, CReservedObject * Kestova::*>;
template struct Declares<&Kestova::m_pReserved2, CReservedObject * Kestova::*>;
template struct Declares<&Kestova::m_mapWinDrive, DriveLetterMap Kestova::*>;
template struct Declares<&Kestova::m_mapPEDrive, DriveLetterMap Kestova::*>;
template struct Declares<&Kestova::m_cWinREDriveLetter, WCHAR Kestova::*>;
template struct Declares<&Kestova::m_cRcvDriveLetter, WCHAR Kestova::*>;
template struct Declares<&Kestova::m_iWinREPartNumber, int Kestova::*>;
template struct Declares<&Kestova::m_iRcvPartNumber, int Kestova::*>;

// The maps are the standard library's own.
#ifdef _MSC_VER
constexpr size_t map = 2 * pointer;
#else
constexpr size_t map = 6 * pointer;
#endif
static_assert(sizeof(DriveLetterMap) == map);
constexpr size_t maps = 8 + 4 * pointer;
constexpr size_t afterMaps = maps + 2 * map;

#ifdef __GNUC__
// The standard leaves the offsets in a class with such members to the compiler.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#endif
template struct Stands<offsetof(Kestova, m_HardDiskType), 0>;
template struct Stands<offsetof(Kestova, m_wReserved), 4>;
template struct Stands<offsetof(Kestova, m_pEncryptVolume), 8>;
template struct Stands<offsetof(Kestova, m_pVDSPartition), 8 + pointer>;
template struct Stands<offsetof(Kestova, m_pReserved1), 8 + 2 * pointer>;
template struct Stands<offsetof(Kestova, m_pReserved2), 8 + 3 * pointer>;
template struct Stands<offsetof(Kestova, m_mapWinDrive), maps>;
template struct Stands<offsetof(Kestova, m_mapPEDrive), maps + map>;
template struct Stands<offsetof(Kestova, m_cWinREDriveLetter), afterMaps>;
template struct Stands<offsetof(Kestova, m_cRcvDriveLetter), afterMaps + 2>;
template struct Stands<offsetof(Kestova, m_iWinREPartNumber), afterMaps + 4>;
template struct Stands<offsetof(Kestova, m_iRcvPartNumber), afterMaps + 8>;
static_assert(sizeof(Kestova) == afterMaps + (pointer == 8 ? 16 : 12));
static_assert(alignof(Kestova) == pointer);

// --- what its operations take ---

static_assert(std::is_same_v<decltype(tagDriveInfo_t::iDiskNum), int>);
static_assert(std::is_same_v<decltype(tagDriveInfo_t::iPartNum), int>);
static_assert(std::is_same_v<decltype(tagDriveInfo_t::cDriveLetter), WCHAR>);
static_assert(offsetof(tagDriveInfo_t, iDiskNum) == 0);
static_assert(offsetof(tagDriveInfo_t, iPartNum) == 4);
static_assert(offsetof(tagDriveInfo_t, cDriveLetter) == 8);
static_assert(sizeof(tagDriveInfo_t) == 12);

static_assert(std::is_same_v<decltype(tagDeviceData_t::pData), BYTE*>);
static_assert(std::is_same_v<decltype(tagDeviceData_t::dwLength), DWORD>);
static_assert(offsetof(tagDeviceData_t, pData) == 0);
static_assert(offsetof(tagDeviceData_t, dwLength) == pointer);
static_assert(sizeof(tagDeviceData_t) == 2 * pointer);

static_assert(std::is_same_v<std::underlying_type_t<THardDiskType>, int>);
static_assert(HARD_DISK_UNKNOWN == 0 && HARD_DISK_MBR == 1 && HARD_DISK_GPT == 2);
static_assert(std::is_same_v<std::underlying_type_t<tagDiskTypeEnum>, int>);
static_assert(DISK_TYPE_UNKNOWN == 0 && DISK_TYPE_GPT_ESP == 1 && DISK_TYPE_GPT_OTHER == 2 &&
              DISK_TYPE_MBR_SYSTEM_RESERVED == 3 && DISK_TYPE_MBR_OTHER == 4);

}  // namespace
