// The software providers and their packs.
#pragma once

#include "machine/api/com/object.h"
#include "machine/api/vds/objects.h"
#include "platform/vds_uncalled.h"

namespace machine {

// The basic provider lists the implicit packs of disks and the named packs that are not dynamic; the
// dynamic one lists the others.
class VdsProvider final : public ComObject,
                          public ComInterface<Uncalled<IVdsProvider>>,
                          public ComInterface<Uncalled<IVdsSwProvider>> {
  public:
    VdsProvider(bool dynamic, const Guid& id)
        : AsProvider(*this, IID_IVdsProvider, "IVdsProvider"),
          AsSwProvider(*this, IID_IVdsSwProvider, "IVdsSwProvider"),
          dynamic_(dynamic),
          id_(id) {}

    // The caller frees name and version ("VDS_PROVIDER_PROP string").
    HRESULT STDMETHODCALLTYPE GetProperties(VDS_PROVIDER_PROP* properties) override;

    // Packs in the order of their first disks, then those without disks.
    HRESULT STDMETHODCALLTYPE QueryPacks(IEnumVdsObject** enumerator) override;

  private:
    using AsProvider = ComInterface<Uncalled<IVdsProvider>>;
    using AsSwProvider = ComInterface<Uncalled<IVdsSwProvider>>;

    const bool dynamic_;
    const Guid id_;
};

class VdsPack final : public ComObject, public ComInterface<Uncalled<IVdsPack>> {
  public:
    VdsPack(PackKey key, const Guid& id)
        : ComInterface(*this, IID_IVdsPack, "IVdsPack"), key_(std::move(key)), id_(id) {}

    // An implicit pack is online and has no name (null); otherwise the caller frees the name
    // ("VDS_PACK_PROP name").
    HRESULT STDMETHODCALLTYPE GetProperties(VDS_PACK_PROP* properties) override;
    // In the PC's order, regardless of the status of the pack.
    HRESULT STDMETHODCALLTYPE QueryDisks(IEnumVdsObject** enumerator) override;

  private:
    const PackKey key_;
    const Guid id_;
};

// Whether the disk belongs to a pack of the dynamic provider.
bool IsDynamic(const Pc& pc, const Disk& disk);

}  // namespace machine
