// Task memory, system strings, variants.
#include <cstring>

#include "machine/api/com/memory.h"
#include "machine/facts/machines.h"
#include "tests/machine/api/com/com_client.h"

using machine::EmulatedPc;

TEST(CoTaskMemory, AllocateAndFree_IsCountedUntilFreed) {
    EmulatedPc pc(machine::FactoryMbr());
    void* const memory = CoTaskMemAlloc(16);
    std::memset(memory, 0xFF, 16);
    EXPECT_EQ(pc.ledger.Outstanding(), (Loans{{"CoTaskMem", 1}}));
    CoTaskMemFree(memory);
    CoTaskMemFree(nullptr);
    EXPECT_TRUE(pc.ledger.Outstanding().empty());
    EXPECT_TRUE(pc.ledger.Violations().empty());
}

TEST(CoTaskMemory, FreedTwice_IsAViolation) {
    EmulatedPc pc(machine::FactoryMbr());
    void* volatile memory = CoTaskMemAlloc(16);  // volatile, to prevent optimisation
    CoTaskMemFree(memory);
    CoTaskMemFree(memory);
    EXPECT_EQ(pc.ledger.Violations().size(), 1u);
}

TEST(SystemStrings, AnyText_HasTextAndLength) {
    EmulatedPc pc(machine::FactoryMbr());
    const BSTR string = SysAllocString(TEXT("CIMV2"));
    EXPECT_EQ(ToUtf8(string), "CIMV2");
    EXPECT_EQ(SysStringLen(string), 5u);
    EXPECT_EQ(SysStringLen(nullptr), 0u);
    EXPECT_EQ(pc.ledger.Outstanding(), (Loans{{"BSTR", 1}}));
    SysFreeString(string);
    SysFreeString(nullptr);
    EXPECT_TRUE(pc.ledger.Outstanding().empty());
}

TEST(SystemStrings, NullText_IsNull) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_TRUE(pc.ledger.Outstanding().empty());
}

TEST(SystemStrings, OutOfMemory_IsNull) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.faults.Arm({"SysAllocString", 1, false, false, ERROR_OUTOFMEMORY});
    EXPECT_EQ(SysAllocString(TEXT("x")), nullptr);
    EXPECT_EQ(pc.lastError, uint32_t{ERROR_OUTOFMEMORY});
    EXPECT_TRUE(pc.ledger.Outstanding().empty());
}

TEST(SystemStrings, FreedAsTaskMemory_IsAViolation) {
    EmulatedPc pc(machine::FactoryMbr());
    CoTaskMemFree(pc.ledger.Lend("BSTR", "BSTR", 16));
    EXPECT_EQ(pc.ledger.Violations(),
              (std::vector<std::string>{"BSTR freed with CoTaskMem instead of BSTR"}));
}

TEST(VariantClear, String_IsFreed) {
    EmulatedPc pc(machine::FactoryMbr());
    VARIANT variant;
    VariantInit(&variant);
    EXPECT_EQ(V_VT(&variant), VT_EMPTY);
    EXPECT_EQ(VariantClear(&variant), S_OK);
    V_VT(&variant) = VT_BSTR;
    V_BSTR(&variant) = SysAllocString(TEXT("text"));
    EXPECT_EQ(VariantClear(&variant), S_OK);
    EXPECT_EQ(V_VT(&variant), VT_EMPTY);
    EXPECT_TRUE(pc.ledger.Outstanding().empty());
}

TEST(VariantClear, Interface_IsReleased) {
    ComClient client(machine::FactoryMbr());
    ComPtr<IVdsService> service = LoadVds();
    VARIANT variant;
    VariantInit(&variant);
    V_VT(&variant) = VT_UNKNOWN;
    V_UNKNOWN(&variant) = service.Detach();
    EXPECT_EQ(VariantClear(&variant), S_OK);
    EXPECT_EQ(client.OnLoan(), Loans());
    V_VT(&variant) = VT_UNKNOWN;
    EXPECT_EQ(VariantClear(&variant), S_OK) << "a null interface";
}

TEST(VariantClear, UnsupportedType_Fails) {
    EmulatedPc pc(machine::FactoryMbr());
    VARIANT variant;
    VariantInit(&variant);
    V_VT(&variant) = VT_ARRAY | VT_I4;
    EXPECT_EQ(VariantClear(&variant), DISP_E_BADVARTYPE);
    EXPECT_EQ(V_VT(&variant), VT_ARRAY | VT_I4);
}
