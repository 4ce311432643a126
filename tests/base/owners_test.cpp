#include "base/owners.h"

#include <gtest/gtest.h>

#include <cstring>

#include <vector>

#include "tests/device/hosted_pc.h"

namespace {

std::vector<int> released;

struct Number {
    using Type = int;
    static Type None() { return -1; }
    static void Release(Type value) { released.push_back(value); }
};
using OwnedNumber = Owner<Number>;
using Released = std::vector<int>;

// Counts the references that its owners give back.
struct CountedObject final : IUnknown {
    virtual ~CountedObject() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(++releases); }
    int releases = 0;
};

}  // namespace

class OwnerTest : public testing::Test {
  protected:
    void SetUp() override { released.clear(); }
};

TEST_F(OwnerTest, EndOfScope_ReleasesOnce) {
    { const OwnedNumber owner(7); }
    EXPECT_EQ(released, Released{7});
}

TEST_F(OwnerTest, Empty_ReleasesNothing) {
    {
        OwnedNumber owner;
        EXPECT_FALSE(owner);
        owner.Reset();
    }
    EXPECT_EQ(released, Released{});
}

TEST_F(OwnerTest, MoveOntoAFullOne_ReleasesItsResource) {
    {
        OwnedNumber full(1);
        OwnedNumber source(2);
        full = std::move(source);
        EXPECT_EQ(released, Released{1});
        EXPECT_EQ(full.Get(), 2);
        EXPECT_FALSE(source);  // NOLINT(bugprone-use-after-move): what is asserted
    }
    EXPECT_EQ(released, (Released{1, 2}));
}

TEST_F(OwnerTest, MoveConstruction_LeavesTheSourceEmpty) {
    {
        OwnedNumber source(3);
        const OwnedNumber taken(std::move(source));
        EXPECT_FALSE(source);  // NOLINT(bugprone-use-after-move): what is asserted
        EXPECT_EQ(taken.Get(), 3);
    }
    EXPECT_EQ(released, Released{3});
}

TEST_F(OwnerTest, SelfMove_KeepsTheResource) {
    OwnedNumber owner(4);
    OwnedNumber& same = owner;
    owner = std::move(same);
    EXPECT_EQ(owner.Get(), 4);
    EXPECT_EQ(released, Released{});
}

TEST_F(OwnerTest, Put_ReleasesItsResource) {
    {
        OwnedNumber owner(5);
        *owner.Put() = 6;
        EXPECT_EQ(released, Released{5});
    }
    EXPECT_EQ(released, (Released{5, 6}));
}

TEST_F(OwnerTest, Detach_GivesTheResourceAway) {
    {
        OwnedNumber owner(8);
        EXPECT_EQ(owner.Detach(), 8);
        EXPECT_FALSE(owner);
    }
    EXPECT_EQ(released, Released{});
}

TEST_F(OwnerTest, Reset_TakesTheOtherValue) {
    {
        OwnedNumber owner(9);
        owner.Reset(10);
        EXPECT_EQ(owner.Get(), 10);
    }
    EXPECT_EQ(released, (Released{9, 10}));
}

TEST(ComPtr, EndOfScope_ReleasesTheReference) {
    CountedObject object;
    {
        const ComPtr<IUnknown> pointer(&object);
        EXPECT_EQ(pointer->AddRef(), 2U);
    }
    EXPECT_EQ(object.releases, 1);
}

// Each of these resources goes back through its own call, or the PC's books do not balance.
TEST(Owners, EndOfScope_EveryOwnerReleasesItsResource) {
    machine::Pc facts = machine::FactoryMbr();
    HostedPc pc(facts);
    const Bstr text(SysAllocString(TEXT("text")));
    const GlobalBuffer<WCHAR> memory(static_cast<WCHAR*>(GlobalAlloc(GMEM_ZEROINIT, 8)));
    const FileHandle file(CreateFileW(TEXT("\\\\.\\C:"), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    const DeviceInfoSet devices(SetupDiCreateDeviceInfoList(nullptr, nullptr));
    EXPECT_TRUE(text && memory && file && devices);
    EXPECT_THAT(pc.emulated.ledger.Outstanding(), testing::SizeIs(5));  // with COM itself
}

TEST(WithInterface, SuccessWithoutInterface_IsInvalid) {
    const int interfaceStandIn = 0;
    EXPECT_EQ(WithInterface(S_OK, nullptr), E_INVALIDARG);
    EXPECT_EQ(WithInterface(S_FALSE, nullptr), E_INVALIDARG);
    EXPECT_EQ(WithInterface(S_OK, &interfaceStandIn), S_OK);
    EXPECT_EQ(WithInterface(S_FALSE, &interfaceStandIn), S_FALSE);
    EXPECT_EQ(WithInterface(E_FAIL, nullptr), E_FAIL);
}

TEST(Variant, String_ReturnsItsText) {
    const HostedPc pc(machine::FactoryMbr());
    Variant value;
    V_VT(value.Put()) = VT_BSTR;
    V_BSTR(const_cast<VARIANT*>(&value.Get())) = SysAllocString(TEXT("disk"));
    EXPECT_EQ(value.Text(), TEXT("disk"));
    EXPECT_EQ(V_VT(value.Put()), VT_EMPTY);  // the string is freed
}

TEST(Variant, AnythingElse_ReturnsAnEmptyText) {
    const HostedPc pc(machine::FactoryMbr());
    Variant value;
    EXPECT_EQ(value.Text(), WideString());
    V_VT(value.Put()) = VT_NULL;
    EXPECT_EQ(value.Text(), WideString());
    V_VT(value.Put()) = VT_I4;
    EXPECT_EQ(value.Text(), WideString());
    V_VT(value.Put()) = VT_BSTR;  // a null string
    EXPECT_EQ(value.Text(), WideString());
}

TEST(Variant, MemoryUsedBefore_Construct_IsEmpty) {
    alignas(Variant) unsigned char place[sizeof(Variant)];
    std::memset(place, 0xFF, sizeof place);
    Variant* const variant = new (place) Variant;
    EXPECT_EQ(V_VT(&variant->Get()), VT_EMPTY);
    variant->~Variant();
}
