// A volume of the Virtual Disk Service: the contents of one partition, as long as its type can hold a
// volume.
#pragma once

#include "machine/api/com/object.h"
#include "machine/api/vds/objects.h"
#include "platform/vds.h"

namespace machine {

// Methods without a comment return VDS_E_NOT_SUPPORTED.
class VdsVolume final : public ComObject, public ComInterface<IVdsVolumeMF> {
  public:
    VdsVolume(VolumePlace place, const Guid& id)
        : ComInterface(*this, IID_IVdsVolumeMF, "IVdsVolumeMF"), place_(place), id_(id) {}
    const Guid& Id() const { return id_; }

    // The caller frees the label ("VDS_FILE_SYSTEM_PROP label"); it is null if the volume has none.
    // VDS_E_OBJECT_DELETED: the volume is gone; otherwise the error of reading its label.
    HRESULT STDMETHODCALLTYPE GetFileSystemProperties(VDS_FILE_SYSTEM_PROP* properties) override;

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

  private:
    const VolumePlace place_;
    const Guid id_;
};

}  // namespace machine
