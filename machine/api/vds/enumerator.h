// A list of service objects, fixed when it is made.
#pragma once

#include "machine/api/com/object.h"
#include "platform/vds.h"

namespace machine {

// Skip, Reset and Clone answer VDS_E_NOT_SUPPORTED.
class VdsEnumerator final : public ComObject, public ComInterface<IEnumVdsObject> {
  public:
    explicit VdsEnumerator(std::vector<ComObject*> objects)
        : ComInterface(*this, IID_IEnumVdsObject, "IEnumVdsObject"), objects_(std::move(objects)) {}

    // S_FALSE: fewer were left than asked for, at the end none. The caller releases what it got.
    HRESULT STDMETHODCALLTYPE Next(ULONG count, IUnknown** objects, ULONG* fetched) override;
    HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Reset() override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVdsObject**) override { return VDS_E_NOT_SUPPORTED; }

  private:
    std::vector<ComObject*> objects_;
    size_t position_ = 0;
};

// Hands a new enumerator out; E_POINTER without an address to put it in.
HRESULT HandOutList(EmulatedPc& pc, std::vector<ComObject*> objects, IEnumVdsObject** enumerator);

}  // namespace machine
