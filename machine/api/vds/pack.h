// The software providers and their packs.
#pragma once

#include "machine/api/com/object.h"
#include "machine/api/vds/objects.h"
#include "platform/vds_uncalled.h"

namespace machine {

// The basic provider lists the implicit packs of disks and the named packs that are not dynamic; the
// dynamic one lists the others.
class VdsProvider final : public ComObject, public ComInterface<Uncalled<IVdsSwProvider>> {
  public:
    explicit VdsProvider(bool dynamic)
        : ComInterface(*this, IID_IVdsSwProvider, "IVdsSwProvider"), dynamic_(dynamic) {}

    // Packs in the order of their first disks, then those without disks.
    HRESULT STDMETHODCALLTYPE QueryPacks(IEnumVdsObject** enumerator) override;

  private:
    const bool dynamic_;
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
