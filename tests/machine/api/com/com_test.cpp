// The component runtime: apartments, security, classes, proxies.
#include "tests/machine/api/com/com_client.h"

#include "machine/facts/machines.h"

using machine::EmulatedPc;

namespace {

HRESULT SetSecurity() {
    return CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                                RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
}

HRESULT SetBlanket(IUnknown* proxy) {
    return CoSetProxyBlanket(proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                             RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
}

HRESULT Create(REFCLSID clsid, DWORD context, REFIID iid, IUnknown* outer = nullptr) {
    IUnknown* created = reinterpret_cast<IUnknown*>(1);
    const HRESULT result = CoCreateInstance(clsid, outer, context, iid, reinterpret_cast<void**>(&created));
    EXPECT_EQ(created != nullptr, result == S_OK);
    if (created != nullptr) created->Release();
    return result;
}

}  // namespace

TEST(CoInitializeEx, Repeated_CountsUntilEachSuccessIsUndone) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
    EXPECT_EQ(pc.ledger.Outstanding(), (Loans{{"COM initialization", 2}}));
    CoUninitialize();
    CoUninitialize();
    EXPECT_TRUE(pc.ledger.Outstanding().empty());
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
}

TEST(CoInitializeEx, OtherModel_Fails) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
    EXPECT_EQ(pc.ledger.Outstanding(), (Loans{{"COM initialization", 1}}));
}

TEST(CoInitializeEx, ReservedArgument_Fails) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_EQ(CoInitializeEx(&pc, COINIT_MULTITHREADED), E_INVALIDARG);
    EXPECT_EQ(pc.ledger.Outstanding(), Loans());
}

TEST(CoUninitialize, Unmatched_IsAViolation) {
    EmulatedPc pc(machine::FactoryMbr());
    CoUninitialize();
    EXPECT_EQ(pc.ledger.Violations().size(), 1u);
    EXPECT_EQ(pc.journal.Calls("CoUninitialize").size(), 1u);
}

TEST(CoInitializeSecurity, Repeated_SucceedsOnce) {
    ComClient client(machine::FactoryMbr());
    EXPECT_EQ(SetSecurity(), S_OK);
    EXPECT_EQ(SetSecurity(), RPC_E_TOO_LATE);
    EXPECT_EQ(SetSecurity(), RPC_E_TOO_LATE);
}

TEST(CoInitializeSecurity, NoApartment_Fails) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_EQ(SetSecurity(), CO_E_NOTINITIALIZED);
}

TEST(CoInitializeSecurity, ReservedArgumentOrServicesThatAreChosen_Fail) {
    ComClient client(machine::FactoryMbr());
    SOLE_AUTHENTICATION_SERVICE service = {};
    const auto set = [&](SOLE_AUTHENTICATION_SERVICE* services, void* reserved1, void* reserved3) {
        return CoInitializeSecurity(nullptr, -1, services, reserved1, RPC_C_AUTHN_LEVEL_DEFAULT,
                                    RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, reserved3);
    };
    EXPECT_EQ(set(&service, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(set(nullptr, &service, nullptr), E_INVALIDARG);
    EXPECT_EQ(set(nullptr, nullptr, &service), E_INVALIDARG);
    EXPECT_EQ(SetSecurity(), S_OK);
}

TEST(CoInitializeSecurity, FaultAfterEffect_CountsAsTheOneCall) {
    ComClient client(machine::FactoryMbr());
    client.pc.faults.Arm({"CoInitializeSecurity", 1, false, true, 0x80004005});
    EXPECT_EQ(SetSecurity(), E_FAIL);
    EXPECT_EQ(SetSecurity(), RPC_E_TOO_LATE);
}

TEST(CoCreateInstance, KnownClasses_AreCreatedInTheirContexts) {
    ComClient client(machine::FactoryMbr());
    EXPECT_EQ(Create(CLSID_VdsLoader, CLSCTX_LOCAL_SERVER, IID_IVdsServiceLoader), S_OK);
    EXPECT_EQ(Create(CLSID_VdsLoader, CLSCTX_ALL, IID_IUnknown), S_OK);
    EXPECT_EQ(Create(CLSID_WbemLocator, CLSCTX_INPROC_SERVER, IID_IWbemLocator), S_OK);
    EXPECT_EQ(client.OnLoan(), Loans());
}

TEST(CoCreateInstance, UnknownClassOrContext_Fails) {
    ComClient client(machine::FactoryMbr());
    EXPECT_EQ(Create(CLSID_VdsLoader, CLSCTX_INPROC_SERVER, IID_IVdsServiceLoader), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(Create(CLSID_WbemLocator, CLSCTX_LOCAL_SERVER, IID_IWbemLocator), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(Create(IID_IVdsDisk, CLSCTX_ALL, IID_IUnknown), REGDB_E_CLASSNOTREG);
}

TEST(CoCreateInstance, AggregationOrUnknownInterface_Fails) {
    ComClient client(machine::FactoryMbr());
    const ComPtr<IVdsService> outer = LoadVds();
    EXPECT_EQ(Create(CLSID_VdsLoader, CLSCTX_LOCAL_SERVER, IID_IVdsServiceLoader, outer.Get()),
              CLASS_E_NOAGGREGATION);
    EXPECT_EQ(Create(CLSID_VdsLoader, CLSCTX_LOCAL_SERVER, IID_IVdsDisk), E_NOINTERFACE);
    EXPECT_EQ(CoCreateInstance(CLSID_VdsLoader, nullptr, CLSCTX_LOCAL_SERVER, IID_IUnknown, nullptr),
              E_POINTER);
}

TEST(CoCreateInstance, NoApartment_Fails) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_EQ(Create(CLSID_VdsLoader, CLSCTX_LOCAL_SERVER, IID_IVdsServiceLoader), CO_E_NOTINITIALIZED);
}

TEST(CoCreateInstance, AnyClass_JournalsItsName) {
    ComClient client(machine::FactoryMbr());
    Create(CLSID_VdsLoader, CLSCTX_LOCAL_SERVER, IID_IVdsServiceLoader);
    Create(IID_IVdsDisk, CLSCTX_LOCAL_SERVER, IID_IVdsServiceLoader);
    const std::vector<machine::CallRecord> calls = client.pc.journal.Calls("CoCreateInstance");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].arguments, (std::vector<std::string>{"VdsLoader", "0x00000004"}));
    EXPECT_EQ(calls[0].result, "0x00000000");
    EXPECT_EQ(calls[1].arguments.front(), "07e5c822-f00c-47a1-8fce-b244da56fd06");
    EXPECT_EQ(calls[1].result, "0x80040154");
}

TEST(CoSetProxyBlanket, LocalObject_Fails) {
    ComClient client(machine::FactoryMbr());
    ComPtr<IWbemLocator> locator;
    ASSERT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(locator.Put())),
              S_OK);
    EXPECT_EQ(SetBlanket(ConnectWmi().Get()), S_OK);
    EXPECT_EQ(SetBlanket(LoadVds().Get()), S_OK);
    EXPECT_EQ(SetBlanket(locator.Get()), E_NOINTERFACE);
    EXPECT_EQ(SetBlanket(nullptr), E_INVALIDARG);
}
