// Lists of objects that a service hands out one by one.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "base/owners.h"
#include "platform/vds.h"
#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/probes.h"

// A service that never ends its list is not asked on and on.
inline constexpr int longestList = 256;

// Hands each object of a list to the action, at most longestList of them. What ended the list: S_FALSE at its
// end, the failure of IEnumVdsObject::Next, S_OK where it may go on.
HRESULT ForEachObject(IEnumVdsObject& list, const std::function<void(IUnknown& object)>& action);

// The objects of a list, each asked for by itself, and once more behind the end.
std::vector<ComPtr<IUnknown>> ProbeList(Probes& probes, const std::string& name, IEnumVdsObject& list);
// What a list does that is asked for no object, and for more than one.
void ProbeCounts(Probes& probes, const std::string& name, IEnumVdsObject& list);

// Another interface of an object, under its published name.
template <typename Interface>
ComPtr<Interface> ProbeInterface(Probes& probes, const std::string& object, IUnknown& of, const char* name,
                                 const IID& id) {
    ComPtr<Interface> found;
    const HRESULT result = of.QueryInterface(id, reinterpret_cast<void**>(found.Put()));
    probes.Add("IUnknown::QueryInterface", object + ", " + name,
               HresultWords(result) + ", " + Presence(found.Get()));
    return found;
}
