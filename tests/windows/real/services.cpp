#include "tests/windows/real/services.h"

#include <gtest/gtest.h>

#include "base/owners.h"
#include "tests/windows/real/com_object.h"

namespace {

Services* living = nullptr;

// --- the class factory ---

using Maker = HRESULT (*)(IUnknown** out);

HRESULT CreateInstance(ComObject<Maker>* self, IUnknown*, REFIID id, IUnknown** out) {
    ComPtr<IUnknown> object;
    self->data(object.Put());
    return object->QueryInterface(id, reinterpret_cast<void**>(out));
}

DWORD Register(REFCLSID id, DWORD context, Maker maker) {
    static const VirtualTable table = TableOf<Maker>({{3, Address(CreateInstance)}});
    static const std::vector<Face> faces = {{IID_IClassFactory, table}};
    ComPtr<IUnknown> factory;
    Hand(faces, maker, factory.Put());
    DWORD cookie = 0;
    EXPECT_EQ(CoRegisterClassObject(id, factory.Get(), context, REGCLS_MULTIPLEUSE, &cookie), S_OK);
    return cookie;
}

}  // namespace

Services::Services(TestPc facts) : pc(std::move(facts)) {
    EXPECT_EQ(com_.Result(), S_OK);
    cookies_[0] = Register(CLSID_VdsLoader, CLSCTX_LOCAL_SERVER, MakeVdsLoader);
    cookies_[1] = Register(CLSID_WbemLocator, CLSCTX_INPROC_SERVER, MakeWmiLocator);
    living = this;
}

Services::~Services() {
    living = nullptr;
    for (const DWORD cookie : cookies_)
        EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
}

TestPc& Facts() {
    return living->pc;
}
