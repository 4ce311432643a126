// WMI: classes with instances whose properties are texts.

#include "tests/windows/real/com_object.h"
#include "tests/windows/real/services.h"

namespace {

using Row = std::map<Text, Text>;

// --- an instance ---

HRESULT Get(ComObject<Row>* self, LPCWSTR name, LONG, VARIANT* value, CIMTYPE*, LONG*) {
    const auto found = self->data.find(name);
    if (found == self->data.end()) return static_cast<HRESULT>(WBEM_E_NOT_FOUND);
    V_VT(value) = VT_BSTR;
    V_BSTR(value) = SysAllocString(found->second.c_str());
    return S_OK;
}

HRESULT HandInstance(const Row& row, IWbemClassObject** out) {
    static const VirtualTable table = TableOf<Row>({{4, Address(Get)}});
    static const std::vector<Face> faces = {{IID_IWbemClassObject, table}};
    return Hand(faces, row, out);
}

// --- the instances of a class ---

struct Instances {
    std::vector<Row> rows;
    size_t next = 0;
};

HRESULT Next(ComObject<Instances>* self, LONG, ULONG, IWbemClassObject** out, ULONG* returned) {
    Instances& instances = self->data;
    *returned = 0;
    if (instances.next == instances.rows.size()) return WBEM_S_FALSE;
    *returned = 1;
    return HandInstance(instances.rows[instances.next++], out);
}

// --- a namespace ---

HRESULT CreateInstanceEnum(ComObject<Nothing>*, const BSTR name, LONG, IWbemContext*,
                           IEnumWbemClassObject** out) {
    static const VirtualTable table = TableOf<Instances>({{4, Address(Next)}});
    static const std::vector<Face> faces = {{IID_IEnumWbemClassObject, table}};
    return Hand(faces, Instances{Facts().instances[name]}, out);
}

// As a proxy does: CoSetProxyBlanket asks for it.
HRESULT SetBlanket(ComObject<Nothing>*, IUnknown*, DWORD, DWORD, OLECHAR*, DWORD, DWORD, void*, DWORD) {
    return S_OK;
}

HRESULT ConnectServer(ComObject<Nothing>*, const BSTR resource, const BSTR, const BSTR, const BSTR, LONG,
                      const BSTR, IWbemContext*, IWbemServices** out) {
    static const VirtualTable table = TableOf<Nothing>({{18, Address(CreateInstanceEnum)}});
    static const VirtualTable security = TableOf<Nothing>({{4, Address(SetBlanket)}});
    static const std::vector<Face> faces = {{IID_IWbemServices, table}, {IID_IClientSecurity, security}};
    *out = nullptr;
    if (Text(resource) != TEXT("\\\\.\\root\\CIMV2")) return static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE);
    return Hand(faces, Nothing(), out);
}

}  // namespace

HRESULT MakeWmiLocator(IUnknown** out) {
    static const VirtualTable table = TableOf<Nothing>({{3, Address(ConnectServer)}});
    static const std::vector<Face> faces = {{IID_IWbemLocator, table}};
    return Hand(faces, Nothing(), out);
}
