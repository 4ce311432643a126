// The Virtual Disk Service: the interfaces, records and identifiers that the toolchains' headers lack or
// declare wrongly. Slots, layouts and values are those of the published headers; layout_checks.cpp and
// slot_checks.cpp check them.
#pragma once

#include <cstddef>

#include "platform/windows_api.h"

// --- identifiers ---

inline constexpr GUID CLSID_VdsLoader = {
    0x9c38ed61, 0xd565, 0x4728, {0xae, 0xee, 0xc8, 0x09, 0x52, 0xf0, 0xec, 0xde}};
inline constexpr GUID IID_IEnumVdsObject = {
    0x118610b7, 0x8d94, 0x4030, {0xb5, 0xb8, 0x50, 0x08, 0x89, 0x78, 0x8e, 0x4e}};
inline constexpr GUID IID_IVdsServiceLoader = {
    0xe0393303, 0x90d4, 0x4a97, {0xab, 0x71, 0xe9, 0xb6, 0x71, 0xee, 0x27, 0x29}};
inline constexpr GUID IID_IVdsService = {
    0x0818a8ef, 0x9ba9, 0x40d8, {0xa6, 0xf9, 0xe2, 0x28, 0x33, 0xcc, 0x77, 0x1e}};
inline constexpr GUID IID_IVdsProvider = {
    0x10c5e575, 0x7984, 0x4e81, {0xa5, 0x6b, 0x43, 0x1f, 0x5f, 0x92, 0xae, 0x42}};
inline constexpr GUID IID_IVdsSwProvider = {
    0x9aa58360, 0xce33, 0x4f92, {0xb6, 0x58, 0xed, 0x24, 0xb1, 0x44, 0x25, 0xb8}};
inline constexpr GUID IID_IVdsPack = {
    0x3b69d7f5, 0x9d94, 0x4648, {0x91, 0xca, 0x79, 0x93, 0x9b, 0xa2, 0x63, 0xbf}};
inline constexpr GUID IID_IVdsDisk = {
    0x07e5c822, 0xf00c, 0x47a1, {0x8f, 0xce, 0xb2, 0x44, 0xda, 0x56, 0xfd, 0x06}};
inline constexpr GUID IID_IVdsAdvancedDisk = {
    0x6e6f6b40, 0x977c, 0x4069, {0xbd, 0xdd, 0xac, 0x71, 0x00, 0x59, 0xf8, 0xc0}};
inline constexpr GUID IID_IVdsAdvancedDisk2 = {
    0x9723f420, 0x9355, 0x42de, {0xab, 0x66, 0xe3, 0x1b, 0xb1, 0x5b, 0xee, 0xac}};
inline constexpr GUID IID_IVdsVolumeMF = {
    0xee2d5ded, 0x6236, 0x4169, {0x93, 0x1d, 0xb9, 0x77, 0x8c, 0xe0, 0x3d, 0xc6}};

// --- enumerations ---

using VDS_OBJECT_ID = GUID;

enum VDS_OBJECT_TYPE : int {
    VDS_OT_UNKNOWN = 0,
    VDS_OT_PROVIDER = 1,
    VDS_OT_PACK = 10,
    VDS_OT_VOLUME = 11,
    VDS_OT_DISK = 13
};

enum VDS_PROVIDER_MASK : DWORD {
    VDS_QUERY_SOFTWARE_PROVIDERS = 1,
    VDS_QUERY_HARDWARE_PROVIDERS = 2,
    VDS_QUERY_VIRTUALDISK_PROVIDERS = 4
};

enum VDS_PARTITION_STYLE : int { VDS_PST_UNKNOWN = 0, VDS_PST_MBR = 1, VDS_PST_GPT = 2 };

enum VDS_STORAGE_BUS_TYPE : int {
    VDS_BUS_TYPE_UNKNOWN = 0,
    VDS_BUS_TYPE_SCSI = 1,
    VDS_BUS_TYPE_ATAPI = 2,
    VDS_BUS_TYPE_ATA = 3,
    VDS_BUS_TYPE_1394 = 4,
    VDS_BUS_TYPE_USB = 7,
    VDS_BUS_TYPE_RAID = 8,
    VDS_BUS_TYPE_SAS = 10,
    VDS_BUS_TYPE_SATA = 11,
    VDS_BUS_TYPE_NVME = 17,
};

enum VDS_DISK_EXTENT_TYPE : int {
    VDS_DET_UNKNOWN = 0,
    VDS_DET_FREE = 1,
    VDS_DET_DATA = 2,
    VDS_DET_OEM = 3,
    VDS_DET_ESP = 4,
    VDS_DET_MSR = 5,
    VDS_DET_LDM = 6,
    VDS_DET_UNUSABLE = 0x7FFF,
};

enum VDS_PACK_STATUS : int { VDS_PS_UNKNOWN = 0, VDS_PS_ONLINE = 1, VDS_PS_OFFLINE = 4 };

enum VDS_FILE_SYSTEM_TYPE : int {
    VDS_FST_UNKNOWN = 0,
    VDS_FST_RAW = 1,
    VDS_FST_FAT = 2,
    VDS_FST_FAT32 = 3,
    VDS_FST_NTFS = 4,
    VDS_FST_CDFS = 5,
    VDS_FST_UDF = 6,
    VDS_FST_EXFAT = 7,
};

// Fields that are only passed on: plain numbers, with a name for each value that is read or written.
using VDS_DISK_STATUS = int;
using VDS_LUN_RESERVE_MODE = int;
using VDS_HEALTH = int;
using VDS_VOLUME_TYPE = int;
using VDS_PROVIDER_TYPE = int;
inline constexpr VDS_PROVIDER_TYPE VDS_PT_SOFTWARE = 1;
inline constexpr ULONG VDS_PF_DYNAMIC = 1;
inline constexpr VDS_DISK_STATUS VDS_DS_ONLINE = 1;
inline constexpr VDS_HEALTH VDS_H_HEALTHY = 1;

// --- result codes ---

inline constexpr HRESULT VDS_E_NOT_SUPPORTED = static_cast<HRESULT>(0x80042400);
inline constexpr HRESULT VDS_E_INITIALIZED_FAILED = static_cast<HRESULT>(0x80042401);
inline constexpr HRESULT VDS_E_OBJECT_NOT_FOUND = static_cast<HRESULT>(0x80042405);
inline constexpr HRESULT VDS_E_OBJECT_DELETED = static_cast<HRESULT>(0x8004240B);
inline constexpr HRESULT VDS_E_DEVICE_IN_USE = static_cast<HRESULT>(0x80042413);
inline constexpr HRESULT VDS_E_INVALID_OPERATION = static_cast<HRESULT>(0x80042415);
inline constexpr HRESULT VDS_E_DISK_NOT_INITIALIZED = static_cast<HRESULT>(0x80042417);
inline constexpr HRESULT VDS_E_ACCESS_DENIED = static_cast<HRESULT>(0x80042427);
inline constexpr HRESULT VDS_E_IO_ERROR = static_cast<HRESULT>(0x8004242B);
inline constexpr HRESULT VDS_E_VOLUME_NOT_MOUNTED = static_cast<HRESULT>(0x8004244F);
inline constexpr HRESULT VDS_E_DRIVE_LETTER_NOT_FREE = static_cast<HRESULT>(0x8004255C);
inline constexpr HRESULT VDS_E_INVALID_DRIVE_LETTER = static_cast<HRESULT>(0x8004255E);
inline constexpr HRESULT VDS_E_INVALID_OBJECT_TYPE = static_cast<HRESULT>(0x80042562);
inline constexpr HRESULT VDS_E_INVALID_PARTITION_TYPE = static_cast<HRESULT>(0x80042565);
inline constexpr HRESULT VDS_E_INVALID_QUERY_PROVIDER_FLAG = static_cast<HRESULT>(0x8004256C);
inline constexpr HRESULT VDS_E_PARTITION_STYLE_MISMATCH = static_cast<HRESULT>(0x80042571);
inline constexpr HRESULT VDS_E_PARTITION_MSR = static_cast<HRESULT>(0x8004258C);
inline constexpr HRESULT VDS_E_PARTITION_LDM = static_cast<HRESULT>(0x8004258D);

// --- records ---

struct VDS_DISK_PROP {
    VDS_OBJECT_ID id;
    VDS_DISK_STATUS status;
    VDS_LUN_RESERVE_MODE ReserveMode;
    VDS_HEALTH health;
    DWORD dwDeviceType;
    DWORD dwMediaType;
    ULONGLONG ullSize;
    ULONG ulBytesPerSector;
    ULONG ulSectorsPerTrack;
    ULONG ulTracksPerCylinder;
    ULONG ulFlags;
    VDS_STORAGE_BUS_TYPE BusType;
    VDS_PARTITION_STYLE PartitionStyle;
    union {
        DWORD dwSignature;
        GUID DiskGuid;
    };
    LPWSTR pwszDiskAddress;
    LPWSTR pwszName;
    LPWSTR pwszFriendlyName;
    LPWSTR pwszAdaptorName;
    LPWSTR pwszDevicePath;
};

struct VDS_PARTITION_INFO_MBR {
    BYTE partitionType;
    BOOLEAN bootIndicator;
    BOOLEAN recognizedPartition;
    DWORD hiddenSectors;
};

struct VDS_PARTITION_INFO_GPT {
    GUID partitionType;
    GUID partitionId;
    ULONGLONG attributes;
    WCHAR name[36];
};

struct VDS_PARTITION_PROP {
    VDS_PARTITION_STYLE PartitionStyle;
    ULONG ulFlags;
    ULONG ulPartitionNumber;
    ULONGLONG ullOffset;
    ULONGLONG ullSize;
    union {
        VDS_PARTITION_INFO_MBR Mbr;
        VDS_PARTITION_INFO_GPT Gpt;
    };
};

struct VDS_DISK_EXTENT {
    VDS_OBJECT_ID diskId;
    VDS_DISK_EXTENT_TYPE type;
    ULONGLONG ullOffset;
    ULONGLONG ullSize;
    VDS_OBJECT_ID volumeId;
    VDS_OBJECT_ID plexId;
    ULONG memberIdx;
};

struct VDS_PROVIDER_PROP {
    VDS_OBJECT_ID id;
    LPWSTR pwszName;
    GUID guidVersionId;
    LPWSTR pwszVersion;
    VDS_PROVIDER_TYPE type;
    ULONG ulFlags;
    ULONG ulStripeSizeFlags;
    SHORT sRebuildPriority;
};

struct VDS_PACK_PROP {
    VDS_OBJECT_ID id;
    LPWSTR pwszName;
    VDS_PACK_STATUS status;
    ULONG ulFlags;
};

struct VDS_FILE_SYSTEM_PROP {
    VDS_FILE_SYSTEM_TYPE type;
    VDS_OBJECT_ID volumeId;
    ULONG ulFlags;
    ULONGLONG ullTotalAllocationUnits;
    ULONGLONG ullAvailableAllocationUnits;
    ULONG ulAllocationUnitSize;
    LPWSTR pwszLabel;
};

// The members of the unions have named types: clang rejects unnamed ones here.
struct CHANGE_ATTRIBUTES_PARAMETERS {
    struct MBR_PART_INFO {
        BOOLEAN bootIndicator;
    };
    struct GPT_PART_INFO {
        ULONGLONG attributes;
    };
    VDS_PARTITION_STYLE style;
    union {
        MBR_PART_INFO MbrPartInfo;
        GPT_PART_INFO GptPartInfo;
    };
};

struct CHANGE_PARTITION_TYPE_PARAMETERS {
    struct MBR_PART_INFO {
        BYTE partitionType;
    };
    struct GPT_PART_INFO {
        GUID partitionType;
    };
    VDS_PARTITION_STYLE style;
    union {
        MBR_PART_INFO MbrPartInfo;
        GPT_PART_INFO GptPartInfo;
    };
};

// Records that only unused methods take or return.
struct VDS_SERVICE_PROP;
struct VDS_DRIVE_LETTER_PROP;
struct VDS_FILE_SYSTEM_TYPE_PROP;
struct VDS_INPUT_DISK;
struct VDS_LUN_INFORMATION;
struct VDS_REPARSE_POINT_PROP;
struct CREATE_PARTITION_PARAMETERS;

// --- interfaces ---

// Every method is in its published slot. Object ids are passed by value. The caller releases every interface
// that a method returns.

struct IVdsAsync;
struct IVdsVolume;
struct IVdsAdviseSink;

struct IEnumVdsObject : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Next(ULONG celt, IUnknown** ppObjectArray, ULONG* pcFetched) = 0;
    virtual HRESULT STDMETHODCALLTYPE Skip(ULONG celt) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IEnumVdsObject** ppEnum) = 0;
};

struct IVdsService : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE IsServiceReady() = 0;
    virtual HRESULT STDMETHODCALLTYPE WaitForServiceReady() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetProperties(VDS_SERVICE_PROP* pServiceProp) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryProviders(DWORD masks, IEnumVdsObject** ppEnum) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryMaskedDisks(IEnumVdsObject** ppEnum) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryUnallocatedDisks(IEnumVdsObject** ppEnum) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetObject(VDS_OBJECT_ID ObjectId, VDS_OBJECT_TYPE type,
                                                IUnknown** ppObjectUnk) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryDriveLetters(WCHAR wcFirstLetter, DWORD count,
                                                        VDS_DRIVE_LETTER_PROP* pArray) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryFileSystemTypes(VDS_FILE_SYSTEM_TYPE_PROP** ppProps,
                                                           LONG* plNumber) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reenumerate() = 0;
    virtual HRESULT STDMETHODCALLTYPE Refresh() = 0;
    virtual HRESULT STDMETHODCALLTYPE CleanupObsoleteMountPoints() = 0;
    virtual HRESULT STDMETHODCALLTYPE Advise(IVdsAdviseSink* pSink, DWORD* pdwCookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE Unadvise(DWORD dwCookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reboot() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetFlags(ULONG ulFlags) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearFlags(ULONG ulFlags) = 0;
};

struct IVdsServiceLoader : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE LoadService(LPWSTR pwszMachineName, IVdsService** ppService) = 0;
};

struct IVdsPack;

struct IVdsProvider : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetProperties(VDS_PROVIDER_PROP* pProviderProp) = 0;
};

struct IVdsSwProvider : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryPacks(IEnumVdsObject** ppEnum) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreatePack(IVdsPack** ppPack) = 0;
};

struct IVdsPack : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetProperties(VDS_PACK_PROP* pPackProp) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetProvider(IVdsProvider** ppProvider) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryVolumes(IEnumVdsObject** ppEnum) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryDisks(IEnumVdsObject** ppEnum) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateVolume(VDS_VOLUME_TYPE type, VDS_INPUT_DISK* pInputDiskArray,
                                                   LONG lNumberOfDisks, ULONG ulStripeSize,
                                                   IVdsAsync** ppAsync) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddDisk(VDS_OBJECT_ID DiskId, VDS_PARTITION_STYLE PartitionStyle,
                                              BOOL bAsHotSpare) = 0;
    virtual HRESULT STDMETHODCALLTYPE MigrateDisks(VDS_OBJECT_ID* pDiskArray, LONG lNumberOfDisks,
                                                   VDS_OBJECT_ID TargetPack, BOOL bForce, BOOL bQueryOnly,
                                                   HRESULT* pResults, BOOL* pbRebootNeeded) = 0;
    virtual HRESULT STDMETHODCALLTYPE ReplaceDisk(VDS_OBJECT_ID OldDiskId, VDS_OBJECT_ID NewDiskId,
                                                  IVdsAsync** ppAsync) = 0;
    virtual HRESULT STDMETHODCALLTYPE RemoveMissingDisk(VDS_OBJECT_ID DiskId) = 0;
    virtual HRESULT STDMETHODCALLTYPE Recover(IVdsAsync** ppAsync) = 0;
};

struct IVdsDisk : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetProperties(VDS_DISK_PROP* pDiskProperties) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPack(IVdsPack** ppPack) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetIdentificationData(VDS_LUN_INFORMATION* pLunInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryExtents(VDS_DISK_EXTENT** ppExtentArray,
                                                   LONG* plNumberOfExtents) = 0;
    virtual HRESULT STDMETHODCALLTYPE ConvertStyle(VDS_PARTITION_STYLE NewStyle) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetFlags(ULONG ulFlags) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearFlags(ULONG ulFlags) = 0;
};

struct IVdsAdvancedDisk : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetPartitionProperties(ULONGLONG ullOffset,
                                                             VDS_PARTITION_PROP* pPartitionProp) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryPartitions(VDS_PARTITION_PROP** ppPartitionPropArray,
                                                      LONG* plNumberOfPartitions) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreatePartition(ULONGLONG ullOffset, ULONGLONG ullSize,
                                                      CREATE_PARTITION_PARAMETERS* para,
                                                      IVdsAsync** ppAsync) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeletePartition(ULONGLONG ullOffset, BOOL bForce,
                                                      BOOL bForceProtected) = 0;
    virtual HRESULT STDMETHODCALLTYPE ChangeAttributes(ULONGLONG ullOffset,
                                                       CHANGE_ATTRIBUTES_PARAMETERS* para) = 0;
    virtual HRESULT STDMETHODCALLTYPE AssignDriveLetter(ULONGLONG ullOffset, WCHAR wcLetter) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteDriveLetter(ULONGLONG ullOffset, WCHAR wcLetter) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDriveLetter(ULONGLONG ullOffset, WCHAR* pwcLetter) = 0;
    virtual HRESULT STDMETHODCALLTYPE FormatPartition(ULONGLONG ullOffset, VDS_FILE_SYSTEM_TYPE type,
                                                      LPWSTR pwszLabel, DWORD dwUnitAllocationSize,
                                                      BOOL bForce, BOOL bQuickFormat, BOOL bEnableCompression,
                                                      IVdsAsync** ppAsync) = 0;
    virtual HRESULT STDMETHODCALLTYPE Clean(BOOL bForce, BOOL bForceOEM, BOOL bFullClean,
                                            IVdsAsync** ppAsync) = 0;
};

struct IVdsAdvancedDisk2 : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE ChangePartitionType(ULONGLONG ullOffset, BOOL bForce,
                                                          CHANGE_PARTITION_TYPE_PARAMETERS* para) = 0;
};

struct IVdsVolumeMF : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetFileSystemProperties(VDS_FILE_SYSTEM_PROP* pFileSystemProp) = 0;
    virtual HRESULT STDMETHODCALLTYPE Format(VDS_FILE_SYSTEM_TYPE type, LPWSTR pwszLabel,
                                             DWORD dwUnitAllocationSize, BOOL bForce, BOOL bQuickFormat,
                                             BOOL bEnableCompression, IVdsAsync** ppAsync) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddAccessPath(LPWSTR pwszPath) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryAccessPaths(LPWSTR** pwszPathArray,
                                                       LONG* plNumberOfAccessPaths) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryReparsePoints(VDS_REPARSE_POINT_PROP** ppProps,
                                                         LONG* plNumber) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteAccessPath(LPWSTR pwszPath, BOOL bForce) = 0;
    virtual HRESULT STDMETHODCALLTYPE Mount() = 0;
    virtual HRESULT STDMETHODCALLTYPE Dismount(BOOL bForce, BOOL bPermanent) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetFileSystemFlags(ULONG ulFlags) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearFileSystemFlags(ULONG ulFlags) = 0;
};
