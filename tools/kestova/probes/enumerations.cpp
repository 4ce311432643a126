#include "tools/kestova/probes/enumerations.h"

namespace {

// The objects that a call for that many puts, of a service that may put one too many.
std::vector<ComPtr<IUnknown>> Next(Probes& probes, const std::string& name, IEnumVdsObject& list,
                                   ULONG count) {
    std::array<IUnknown*, 4> objects = {};
    ULONG fetched = 0;
    const HRESULT result = list.Next(count, objects.data(), &fetched);
    probes.Add("IEnumVdsObject::Next", name + ", " + std::to_string(count),
               HresultWords(result) + ", " + std::to_string(fetched));
    std::vector<ComPtr<IUnknown>> owned;
    for (IUnknown* const object : objects) {
        if (object != nullptr) owned.emplace_back(object);
    }
    return owned;
}

}  // namespace

HRESULT ForEachObject(IEnumVdsObject& list, const std::function<void(IUnknown& object)>& action) {
    for (int position = 0; position < longestList; ++position) {
        ComPtr<IUnknown> object;
        ULONG fetched = 0;
        const HRESULT result = list.Next(1, object.Put(), &fetched);
        if (result != S_OK) return result;
        if (!object) return S_FALSE;
        action(*object.Get());
    }
    return S_OK;
}

std::vector<ComPtr<IUnknown>> ProbeList(Probes& probes, const std::string& name, IEnumVdsObject& list) {
    std::vector<ComPtr<IUnknown>> all;
    for (int position = 1; position <= longestList; ++position) {
        std::vector<ComPtr<IUnknown>> next = Next(probes, name, list, 1);
        if (next.empty()) break;
        all.push_back(std::move(next.front()));
    }
    Next(probes, name + ", behind the end", list, 1);
    return all;
}

void ProbeCounts(Probes& probes, const std::string& name, IEnumVdsObject& list) {
    Next(probes, name, list, 0);
    Next(probes, name, list, 2);
    Next(probes, name, list, 3);
}
