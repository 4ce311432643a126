// The two classes of COM that the library uses, and some that it does not.

#include "base/hexadecimal.h"
#include "base/owners.h"
#include "platform/vds.h"
#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/probes.h"

namespace {

constexpr GUID unknownId = {0x5d1f3c20, 0x7a4e, 0x4b18, {0x93, 0x6c, 0x2e, 0x55, 0x10, 0x8f, 0xd4, 0x71}};

struct NamedId {
    const char* name;
    GUID id;
};

void ProbeClass(Probes& probes, const NamedId& comClass, DWORD context, const NamedId& wanted) {
    ComPtr<IUnknown> object;
    const HRESULT result =
        CoCreateInstance(comClass.id, nullptr, context, wanted.id, reinterpret_cast<void**>(object.Put()));
    probes.Add("CoCreateInstance",
               std::string(comClass.name) + ", context " + Hex(context, 1) + ", " + wanted.name,
               HresultWords(result) + ", " + Presence(object.Get()));
}

}  // namespace

void ProbeClasses(Probes& probes) {
    const NamedId loader = {"CLSID_VdsLoader", CLSID_VdsLoader};
    const NamedId locator = {"CLSID_WbemLocator", CLSID_WbemLocator};
    const NamedId unknown = {"an unknown id", unknownId};
    const NamedId any = {"IID_IUnknown", IID_IUnknown};
    ProbeClass(probes, loader, CLSCTX_LOCAL_SERVER, {"IID_IVdsServiceLoader", IID_IVdsServiceLoader});
    ProbeClass(probes, loader, CLSCTX_LOCAL_SERVER, any);
    ProbeClass(probes, loader, CLSCTX_LOCAL_SERVER, unknown);
    ProbeClass(probes, loader, CLSCTX_INPROC_SERVER, any);
    ProbeClass(probes, locator, CLSCTX_INPROC_SERVER, {"IID_IWbemLocator", IID_IWbemLocator});
    ProbeClass(probes, locator, CLSCTX_INPROC_SERVER, any);
    ProbeClass(probes, locator, CLSCTX_INPROC_SERVER, unknown);
    ProbeClass(probes, unknown, CLSCTX_LOCAL_SERVER, any);
    ProbeClass(probes, unknown, CLSCTX_INPROC_SERVER, any);
}
