// The software providers and their packs.
#pragma once

#include "machine/api/com/object.h"
#include "machine/api/vds/objects.h"
#include "platform/vds.h"

namespace machine {

// The basic provider lists the implicit packs of disks and the named packs that are not dynamic; the
// dynamic one lists the others.
class VdsProvider final : public ComObject, public ComInterface<IVdsSwProvider> {
  public:
    explicit VdsProvider(bool dynamic)
        : ComInterface(*this, IID_IVdsSwProvider, "IVdsSwProvider"), dynamic_(dynamic) {}

    // Packs in the order of their first disks, then those without disks.
    HRESULT STDMETHODCALLTYPE QueryPacks(IEnumVdsObject** enumerator) override;
    HRESULT STDMETHODCALLTYPE CreatePack(IVdsPack**) override { return VDS_E_NOT_SUPPORTED; }

  private:
    const bool dynamic_;
};

// Methods without a comment return VDS_E_NOT_SUPPORTED.
class VdsPack final : public ComObject, public ComInterface<IVdsPack> {
  public:
    VdsPack(PackKey key, const Guid& id)
        : ComInterface(*this, IID_IVdsPack, "IVdsPack"), key_(std::move(key)), id_(id) {}

    // An implicit pack is online and has no name (null); otherwise the caller frees the name
    // ("VDS_PACK_PROP name").
    HRESULT STDMETHODCALLTYPE GetProperties(VDS_PACK_PROP* properties) override;
    // In the PC's order, regardless of the status of the pack.
    HRESULT STDMETHODCALLTYPE QueryDisks(IEnumVdsObject** enumerator) override;

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

  private:
    const PackKey key_;
    const Guid id_;
};

// Whether the disk belongs to a pack of the dynamic provider.
bool IsDynamic(const Pc& pc, const Disk& disk);

}  // namespace machine
