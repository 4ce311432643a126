#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;
using testing::ElementsAre;
using testing::Pair;

TEST(GlobalAlloc, ZeroInitFlag_DecidesWhetherMemoryIsZeroed) {
    EmulatedPc pc(machine::FactoryMbr());
    SetLastError(staleError);
    char* const zeroed = static_cast<char*>(GlobalAlloc(GPTR, 4));
    char* const plain = static_cast<char*>(GlobalAlloc(GMEM_FIXED, 4));
    EXPECT_EQ(std::string_view(zeroed, 4), std::string_view("\0\0\0\0", 4));
    EXPECT_NE(std::string_view(plain, 4), std::string_view("\0\0\0\0", 4));
    EXPECT_THAT(pc.ledger.Outstanding(), ElementsAre(Pair("GlobalAlloc", 2)));
    EXPECT_EQ(GlobalFree(zeroed), nullptr);
    EXPECT_EQ(GlobalFree(plain), nullptr);
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
    EXPECT_EQ(GetLastError(), staleError);
    ExpectCleanLedger(pc);
}

TEST(GlobalAlloc, TooLargeOrMovable_FailsWithItsError) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_EQ(GlobalAlloc(GMEM_MOVEABLE, 4), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(GlobalAlloc(GPTR, SIZE_T{1} << 31), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ENOUGH_MEMORY});
    FailNext(pc, "GlobalAlloc", ERROR_OUTOFMEMORY);
    EXPECT_EQ(GlobalAlloc(GPTR, 4), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_OUTOFMEMORY});
    ExpectCleanLedger(pc);
}

TEST(GlobalFree, UnknownBlock_IsReturnedAndIsAViolation) {
    EmulatedPc pc(machine::FactoryMbr());
    // Hidden from the compiler, which knows what may be freed.
    void* volatile elsewhere = reinterpret_cast<void*>(uintptr_t{0x1000});
    void* const unknown = elsewhere;
    EXPECT_EQ(GlobalFree(unknown), unknown);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_THAT(pc.ledger.Violations(), testing::SizeIs(1));
}
