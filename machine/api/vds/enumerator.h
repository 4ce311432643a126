// An enumeration of service objects, fixed at its creation.
#pragma once

#include "machine/api/com/object.h"
#include "platform/vds.h"

namespace machine {

// Skip, Reset and Clone return VDS_E_NOT_SUPPORTED.
class VdsEnumerator final : public ComObject, public ComInterface<IEnumVdsObject> {
  public:
    explicit VdsEnumerator(std::vector<ComObject*> objects)
        : ComInterface(*this, IID_IEnumVdsObject, "IEnumVdsObject"), objects_(std::move(objects)) {}

    // S_FALSE: fewer objects remained than requested, at the end none. The caller releases those returned.
    HRESULT STDMETHODCALLTYPE Next(ULONG count, IUnknown** objects, ULONG* fetched) override;
    HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Reset() override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVdsObject**) override { return VDS_E_NOT_SUPPORTED; }

  private:
    std::vector<ComObject*> objects_;
    size_t position_ = 0;
};

// Returns a new enumerator; E_POINTER without an output pointer.
HRESULT HandOutList(EmulatedPc& pc, std::vector<ComObject*> objects, IEnumVdsObject** enumerator);

}  // namespace machine
