// The component runtime: apartment, security, and the two classes that can be instantiated.

#include <utility>

#include "machine/api/vds/loader.h"
#include "machine/api/wmi/locator.h"

using namespace machine;

namespace {

struct ComRuntime {
    int initializations = 0;
    DWORD model = 0;  // of the apartment, while initialised
    bool securitySet = false;
};

const char* const initialization = "COM initialization";

struct ComClass {
    GUID clsid;
    const char* name;
    DWORD context;  // contexts in which the class can run
    ComObject& (*make)(EmulatedPc&);
};

template <typename Object>
ComObject& Make(EmulatedPc& pc) {
    return MakeObject<Object>(pc);
}

const ComClass* FindClass(REFCLSID clsid) {
    static const ComClass classes[] = {
        {CLSID_VdsLoader, "VdsLoader", CLSCTX_LOCAL_SERVER, Make<VdsServiceLoader>},
        {CLSID_WbemLocator, "WbemLocator", CLSCTX_INPROC_SERVER, Make<WmiLocator>},
    };
    for (const ComClass& known : classes) {
        if (IsEqualGUID(known.clsid, clsid)) return &known;
    }
    return nullptr;
}

bool IsInitialized(EmulatedPc& pc) {
    return pc.State<ComRuntime>().initializations > 0;
}

}  // namespace

// S_FALSE: already initialised; RPC_E_CHANGED_MODE: with another model, and not counted; E_INVALIDARG: a
// reserved argument other than null. Each success requires one CoUninitialize; until then the ledger lists a
// "COM initialization".
extern "C" HRESULT WINAPI CoInitializeEx(LPVOID reserved, DWORD model) {
    return Answer<HRESULT>("CoInitializeEx", {Hex(model)}, [&](EmulatedPc& pc) {
        if (reserved != nullptr) return E_INVALIDARG;
        ComRuntime& runtime = pc.State<ComRuntime>();
        const DWORD apartment = model & COINIT_APARTMENTTHREADED;
        if (runtime.initializations > 0 && runtime.model != apartment) return RPC_E_CHANGED_MODE;
        runtime.model = apartment;
        pc.ledger.Take(initialization);
        return ++runtime.initializations == 1 ? S_OK : S_FALSE;
    });
}

// An unmatched call is a violation in the ledger.
extern "C" void WINAPI CoUninitialize() {
    const Turn turn;
    EmulatedPc& pc = EmulatedPc::Current();
    pc.ledger.GiveBack(initialization);
    ComRuntime& runtime = pc.State<ComRuntime>();
    if (runtime.initializations > 0) --runtime.initializations;
    pc.journal.Add(CallRecord{"CoUninitialize", {}, "", false});
}

// E_INVALIDARG: a reserved argument other than null, or a list of services beside the request to choose them
// (-1); CO_E_NOTINITIALIZED: before CoInitializeEx; RPC_E_TOO_LATE: all calls after the first.
extern "C" HRESULT WINAPI CoInitializeSecurity(PSECURITY_DESCRIPTOR descriptor, LONG services,
                                               SOLE_AUTHENTICATION_SERVICE* serviceList, void* reserved1,
                                               DWORD authentication, DWORD impersonation, void* identities,
                                               DWORD capabilities, void* reserved3) {
    NoteUnshown("CoInitializeSecurity", [&] {
        return Arguments{Presence(descriptor), Presence(serviceList), Presence(identities)};
    });
    return Answer<HRESULT>("CoInitializeSecurity",
                           {std::to_string(services), std::to_string(authentication),
                            std::to_string(impersonation), Hex(capabilities)},
                           [&](EmulatedPc& pc) {
                               if (reserved1 != nullptr || reserved3 != nullptr) return E_INVALIDARG;
                               if (services == -1 && serviceList != nullptr) return E_INVALIDARG;
                               if (!IsInitialized(pc)) return CO_E_NOTINITIALIZED;
                               bool& set = pc.State<ComRuntime>().securitySet;
                               return std::exchange(set, true) ? RPC_E_TOO_LATE : S_OK;
                           });
}

// CO_E_NOTINITIALIZED: before CoInitializeEx; REGDB_E_CLASSNOTREG: an unknown class, or one that does not
// run in this context; CLASS_E_NOAGGREGATION: with an outer object; E_NOINTERFACE: the class does not
// implement the interface. The caller releases the interface.
extern "C" HRESULT WINAPI CoCreateInstance(REFCLSID clsid, LPUNKNOWN outer, DWORD context, REFIID iid,
                                           LPVOID* out) {
    Empty(out);
    const ComClass* const known = FindClass(clsid);
    return Answer<HRESULT>("CoCreateInstance",
                           {known != nullptr ? known->name : GuidText(clsid), Hex(context)},
                           [&](EmulatedPc& pc) {
                               if (out == nullptr) return E_POINTER;
                               if (!IsInitialized(pc)) return CO_E_NOTINITIALIZED;
                               if (known == nullptr || (known->context & context) == 0)
                                   return REGDB_E_CLASSNOTREG;
                               if (outer != nullptr) return CLASS_E_NOAGGREGATION;
                               *out = known->make(pc).Take(iid);
                               return *out != nullptr ? S_OK : E_NOINTERFACE;
                           });
}

// E_INVALIDARG: a null proxy; E_NOINTERFACE: an object of this process, which has no proxy.
extern "C" HRESULT WINAPI CoSetProxyBlanket(IUnknown* proxy, DWORD authentication, DWORD authorization,
                                            OLECHAR* principal, DWORD level, DWORD impersonation,
                                            RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities) {
    NoteUnshown("CoSetProxyBlanket", [&] { return Arguments{Presence(principal), Presence(identity)}; });
    return Answer<HRESULT>("CoSetProxyBlanket",
                           {std::to_string(authentication), std::to_string(authorization),
                            std::to_string(level), std::to_string(impersonation), Hex(capabilities)},
                           [&](EmulatedPc&) {
                               if (proxy == nullptr) return E_INVALIDARG;
                               return dynamic_cast<WmiLocator*>(proxy) == nullptr ? S_OK : E_NOINTERFACE;
                           });
}
