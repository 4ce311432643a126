// A volume of the Virtual Disk Service: the contents of one partition, as long as its type can hold a
// volume.
#pragma once

#include "machine/api/com/object.h"
#include "machine/api/vds/objects.h"
#include "platform/vds_uncalled.h"

namespace machine {

class VdsVolume final : public ComObject, public ComInterface<Uncalled<IVdsVolumeMF>> {
  public:
    VdsVolume(VolumePlace place, const Guid& id)
        : ComInterface(*this, IID_IVdsVolumeMF, "IVdsVolumeMF"), place_(place), id_(id) {}
    const Guid& Id() const { return id_; }

    // The caller frees the label ("VDS_FILE_SYSTEM_PROP label"); it is null if the volume has none.
    // VDS_E_OBJECT_DELETED: the volume is gone; otherwise the error of reading its label.
    HRESULT STDMETHODCALLTYPE GetFileSystemProperties(VDS_FILE_SYSTEM_PROP* properties) override;

  private:
    const VolumePlace place_;
    const Guid id_;
};

}  // namespace machine
