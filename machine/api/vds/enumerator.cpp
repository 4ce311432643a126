#include "machine/api/vds/enumerator.h"

#include <algorithm>

namespace machine {

HRESULT VdsEnumerator::Next(ULONG count, IUnknown** objects, ULONG* fetched) {
    if (objects != nullptr) std::fill_n(objects, count, nullptr);
    Empty(fetched);
    return Call(
        "IEnumVdsObject::Next", {std::to_string(count)},
        [&](EmulatedPc&) {
            if (objects == nullptr || fetched == nullptr) return E_POINTER;
            while (*fetched < count && position_ < objects_.size())
                objects[(*fetched)++] = objects_[position_++]->Take(IID_IUnknown);
            return *fetched == count ? S_OK : S_FALSE;
        },
        fetched);
}

HRESULT HandOutList(EmulatedPc& pc, std::vector<ComObject*> objects, IEnumVdsObject** enumerator) {
    if (enumerator == nullptr) return E_POINTER;
    return HandOut<IEnumVdsObject>(MakeObject<VdsEnumerator>(pc, std::move(objects)), enumerator);
}

}  // namespace machine
