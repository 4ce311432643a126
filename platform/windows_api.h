// The platform's headers, in an order that compiles with every toolchain, and the few declarations that some
// of them lack. Code that calls Windows includes this file instead of any system header. The two headers that
// applications include do not: they need the plain types of windows.h alone, and what an application reads of
// the platform is left as it is.
#pragma once

#include <windows.h>
// windows.h renames every method of this name; VDS and WMI have one each.
#undef GetObject
// These use the types of windows.h.
#include <ntddscsi.h>
#include <ntddstor.h>
#include <objbase.h>
#include <oleauto.h>
#include <setupapi.h>
#include <shlwapi.h>
#include <wbemcli.h>
#include <winioctl.h>

#ifndef _WIN32
// Missing from the Wine headers: the structures of the partition controls, laid out as in winioctl.h, and a
// function.

enum PARTITION_STYLE { PARTITION_STYLE_MBR, PARTITION_STYLE_GPT, PARTITION_STYLE_RAW };

struct PARTITION_INFORMATION_MBR {
    BYTE PartitionType;
    BOOLEAN BootIndicator;
    BOOLEAN RecognizedPartition;
    DWORD HiddenSectors;
};

struct PARTITION_INFORMATION_GPT {
    GUID PartitionType;
    GUID PartitionId;
    DWORD64 Attributes;
    WCHAR Name[36];
};

struct PARTITION_INFORMATION_EX {
    PARTITION_STYLE PartitionStyle;
    LARGE_INTEGER StartingOffset;
    LARGE_INTEGER PartitionLength;
    DWORD PartitionNumber;
    BOOLEAN RewritePartition;
    union {
        PARTITION_INFORMATION_MBR Mbr;
        PARTITION_INFORMATION_GPT Gpt;
    };
};

struct DRIVE_LAYOUT_INFORMATION_MBR {
    DWORD Signature;
};

struct DRIVE_LAYOUT_INFORMATION_GPT {
    GUID DiskId;
    LARGE_INTEGER StartingUsableOffset;
    LARGE_INTEGER UsableLength;
    DWORD MaxPartitionCount;
};

struct DRIVE_LAYOUT_INFORMATION_EX {
    DWORD PartitionStyle;
    DWORD PartitionCount;
    union {
        DRIVE_LAYOUT_INFORMATION_MBR Mbr;
        DRIVE_LAYOUT_INFORMATION_GPT Gpt;
    };
    PARTITION_INFORMATION_EX PartitionEntry[1];
};

extern "C" DWORD WINAPI GetFirmwareEnvironmentVariableW(LPCWSTR name, LPCWSTR guid, PVOID buffer, DWORD size);
#endif

static_assert(sizeof(WCHAR) == 2);
