#include "machine/facts/letters.h"
#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;

namespace {

// A 32-bit program on a 64-bit system: the loader exists only in System32, one library only in SysWOW64.
machine::Pc EmulatingPc() {
    machine::Pc pc = machine::FactoryMbr();
    pc.system.emulates32Bit = true;
    machine::FindLetter(pc, 'C').volume->files.PutFile("Windows/SysWOW64/thunk.dll", "MZ");
    return pc;
}

const WCHAR* const loader = TEXT("C:\\Windows\\System32\\Winload.exe");

}  // namespace

TEST(IsWow64Process, ThisProcess_ReturnsTheFact) {
    for (const bool emulates : {false, true}) {
        machine::Pc facts = machine::FactoryMbr();
        facts.system.emulates32Bit = emulates;
        EmulatedPc pc(facts);
        BOOL emulated = 7;
        EXPECT_TRUE(IsWow64Process(GetCurrentProcess(), &emulated));
        EXPECT_EQ(emulated, emulates ? TRUE : FALSE);
    }
}

TEST(IsWow64Process, OtherProcessOrFault_Fails) {
    EmulatedPc pc(EmulatingPc());
    BOOL emulated = 7;
    EXPECT_FALSE(IsWow64Process(nullptr, &emulated));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_FALSE(IsWow64Process(GetCurrentProcess(), nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    FailNext(pc, "IsWow64Process", ERROR_ACCESS_DENIED);
    EXPECT_FALSE(IsWow64Process(GetCurrentProcess(), &emulated));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(emulated, 7);
}

TEST(Redirection, RunningSystem_ShowsSysWow64AsSystem32) {
    EmulatedPc pc(EmulatingPc());
    EXPECT_FALSE(PathFileExistsW(loader));
    EXPECT_TRUE(PathFileExistsW(TEXT("C:\\Windows\\System32\\thunk.dll")));
    EXPECT_TRUE(PathFileExistsW(TEXT("c:/WINDOWS/./system32")));
    EXPECT_TRUE(PathFileExistsW(TEXT("C:\\Windows\\SysWOW64\\thunk.dll")));
    EXPECT_EQ(OpenShared(loader), INVALID_HANDLE_VALUE);
    EXPECT_FALSE(DeleteFileW(loader));
    EXPECT_FALSE(PathFileExistsW(TEXT("C:\\Windows\\System32x")));
    EXPECT_TRUE(PathFileExistsW(TEXT("C:\\Windows"))) << "only System32 is another folder";
}

TEST(Redirection, OtherVolume_IsNotRedirected) {
    EmulatedPc pc(EmulatingPc());
    machine::FindLetter(pc.facts, 'D').volume->files.PutFile("Windows/System32/Winload.exe", "MZ");
    EXPECT_TRUE(PathFileExistsW(TEXT("D:\\Windows\\System32\\Winload.exe")));
}

TEST(Redirection, BetweenDisableAndRevert_IsOff) {
    EmulatedPc pc(EmulatingPc());
    SetLastError(staleError);
    PVOID old = &pc;
    EXPECT_TRUE(Wow64DisableWow64FsRedirection(&old));
    EXPECT_TRUE(PathFileExistsW(loader));
    EXPECT_EQ(GetLastError(), staleError);
    EXPECT_THAT(pc.ledger.Outstanding(), testing::ElementsAre(testing::Pair("file-system redirection", 1)));
    EXPECT_TRUE(Wow64RevertWow64FsRedirection(old));
    EXPECT_FALSE(PathFileExistsW(loader));
    ExpectCleanLedger(pc);
}

TEST(Redirection, DisabledTwice_IsRestoredStepByStep) {
    EmulatedPc pc(EmulatingPc());
    PVOID first = nullptr;
    PVOID second = nullptr;
    EXPECT_TRUE(Wow64DisableWow64FsRedirection(&first));
    EXPECT_TRUE(Wow64DisableWow64FsRedirection(&second));
    EXPECT_TRUE(Wow64RevertWow64FsRedirection(second));
    EXPECT_TRUE(PathFileExistsW(loader));
    EXPECT_TRUE(Wow64RevertWow64FsRedirection(first));
    EXPECT_FALSE(PathFileExistsW(loader));
    ExpectCleanLedger(pc);
    EXPECT_TRUE(Wow64RevertWow64FsRedirection(first));
    EXPECT_THAT(pc.ledger.Violations(), testing::ElementsAre("file-system redirection given back too often"));
}

TEST(Redirection, Program64Bit_FailsWithInvalidFunction) {
    EmulatedPc pc(machine::FactoryMbr());
    PVOID old = &pc;
    EXPECT_TRUE(PathFileExistsW(loader));
    EXPECT_FALSE(Wow64DisableWow64FsRedirection(&old));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FUNCTION});
    EXPECT_EQ(old, &pc);
    SetLastError(staleError);
    EXPECT_FALSE(Wow64RevertWow64FsRedirection(old));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FUNCTION});
    ExpectCleanLedger(pc);
}

TEST(Redirection, NullStateOrFault_Fails) {
    EmulatedPc pc(EmulatingPc());
    EXPECT_FALSE(Wow64DisableWow64FsRedirection(nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    FailNext(pc, "Wow64DisableWow64FsRedirection", ERROR_ACCESS_DENIED);
    PVOID old = nullptr;
    EXPECT_FALSE(Wow64DisableWow64FsRedirection(&old));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_FALSE(PathFileExistsW(loader)) << "the redirection stays on";
    EXPECT_TRUE(Wow64DisableWow64FsRedirection(&old));
    FailNext(pc, "Wow64RevertWow64FsRedirection", ERROR_ACCESS_DENIED, true);
    EXPECT_FALSE(Wow64RevertWow64FsRedirection(old));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_FALSE(PathFileExistsW(loader)) << "it is on again all the same";
    ExpectCleanLedger(pc);
}
