// The methods of the Virtual Disk Service that the library does not call. What stands in for an object of the
// service, or between it and the library, derives from these: they answer VDS_E_NOT_SUPPORTED.
#pragma once

#include "platform/vds.h"

// Of an interface whose methods are all called.
template <typename Interface>
class Uncalled : public Interface {};

template <>
class Uncalled<IEnumVdsObject> : public IEnumVdsObject {
  public:
    HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Reset() override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVdsObject**) override { return VDS_E_NOT_SUPPORTED; }
};

template <>
class Uncalled<IVdsService> : public IVdsService {
  public:
    HRESULT STDMETHODCALLTYPE GetProperties(VDS_SERVICE_PROP*) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE QueryMaskedDisks(IEnumVdsObject**) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE QueryDriveLetters(WCHAR, DWORD, VDS_DRIVE_LETTER_PROP*) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE QueryFileSystemTypes(VDS_FILE_SYSTEM_TYPE_PROP**, LONG*) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE Reenumerate() override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Refresh() override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE CleanupObsoleteMountPoints() override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Advise(IVdsAdviseSink*, DWORD*) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Reboot() override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE SetFlags(ULONG) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE ClearFlags(ULONG) override { return VDS_E_NOT_SUPPORTED; }
};

template <>
class Uncalled<IVdsSwProvider> : public IVdsSwProvider {
  public:
    HRESULT STDMETHODCALLTYPE CreatePack(IVdsPack**) override { return VDS_E_NOT_SUPPORTED; }
};

template <>
class Uncalled<IVdsPack> : public IVdsPack {
  public:
    HRESULT STDMETHODCALLTYPE GetProvider(IVdsProvider**) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE QueryVolumes(IEnumVdsObject**) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE CreateVolume(VDS_VOLUME_TYPE, VDS_INPUT_DISK*, LONG, ULONG,
                                           IVdsAsync**) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE AddDisk(VDS_OBJECT_ID, VDS_PARTITION_STYLE, BOOL) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE MigrateDisks(VDS_OBJECT_ID*, LONG, VDS_OBJECT_ID, BOOL, BOOL, HRESULT*,
                                           BOOL*) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE ReplaceDisk(VDS_OBJECT_ID, VDS_OBJECT_ID, IVdsAsync**) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE RemoveMissingDisk(VDS_OBJECT_ID) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Recover(IVdsAsync**) override { return VDS_E_NOT_SUPPORTED; }
};

template <>
class Uncalled<IVdsDisk> : public IVdsDisk {
  public:
    HRESULT STDMETHODCALLTYPE GetPack(IVdsPack**) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE GetIdentificationData(VDS_LUN_INFORMATION*) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE ConvertStyle(VDS_PARTITION_STYLE) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE SetFlags(ULONG) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE ClearFlags(ULONG) override { return VDS_E_NOT_SUPPORTED; }
};

template <>
class Uncalled<IVdsAdvancedDisk> : public IVdsAdvancedDisk {
  public:
    HRESULT STDMETHODCALLTYPE GetPartitionProperties(ULONGLONG, VDS_PARTITION_PROP*) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE CreatePartition(ULONGLONG, ULONGLONG, CREATE_PARTITION_PARAMETERS*,
                                              IVdsAsync**) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE DeletePartition(ULONGLONG, BOOL, BOOL) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE FormatPartition(ULONGLONG, VDS_FILE_SYSTEM_TYPE, LPWSTR, DWORD, BOOL, BOOL,
                                              BOOL, IVdsAsync**) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE Clean(BOOL, BOOL, BOOL, IVdsAsync**) override { return VDS_E_NOT_SUPPORTED; }
};

template <>
class Uncalled<IVdsVolumeMF> : public IVdsVolumeMF {
  public:
    HRESULT STDMETHODCALLTYPE Format(VDS_FILE_SYSTEM_TYPE, LPWSTR, DWORD, BOOL, BOOL, BOOL,
                                     IVdsAsync**) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE AddAccessPath(LPWSTR) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE QueryAccessPaths(LPWSTR**, LONG*) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE QueryReparsePoints(VDS_REPARSE_POINT_PROP**, LONG*) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE DeleteAccessPath(LPWSTR, BOOL) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Mount() override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Dismount(BOOL, BOOL) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE SetFileSystemFlags(ULONG) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE ClearFileSystemFlags(ULONG) override { return VDS_E_NOT_SUPPORTED; }
};
