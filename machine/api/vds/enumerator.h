// An enumeration of service objects, fixed at its creation.
#pragma once

#include "machine/api/com/object.h"
#include "platform/vds_uncalled.h"

namespace machine {

class VdsEnumerator final : public ComObject, public ComInterface<Uncalled<IEnumVdsObject>> {
  public:
    explicit VdsEnumerator(std::vector<ComObject*> objects)
        : ComInterface(*this, IID_IEnumVdsObject, "IEnumVdsObject"), objects_(std::move(objects)) {}

    // S_FALSE: fewer objects remained than requested, at the end none. The caller releases those returned.
    HRESULT STDMETHODCALLTYPE Next(ULONG count, IUnknown** objects, ULONG* fetched) override;

  private:
    std::vector<ComObject*> objects_;
    size_t position_ = 0;
};

// Returns a new enumerator; E_POINTER without an output pointer.
HRESULT HandOutList(EmulatedPc& pc, std::vector<ComObject*> objects, IEnumVdsObject** enumerator);

}  // namespace machine
