// Emulated PCs, as the tests of an application open, break and keep them.

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>

#include "tests/c/interface.h"
#include "tests/support/temporary_folder.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

class CEmulatedPc : public CInterfaceTest {
  protected:
    std::string Refused(const std::string& nameOrFile) {
        EXPECT_EQ(kestova_open_pc(nameOrFile.c_str()), nullptr);
        EXPECT_EQ(LastProblem().code, KESTOVA_PROBLEM_PC);
        return Utf8(LastProblem().words);
    }

    TemporaryFolder folder_;
};

TEST_F(CEmulatedPc, UnknownName_Opened_IsRefused) {
    EXPECT_EQ(Refused("factory-mbt"),
              "kestova_open_pc: there is no machine or file 'factory-mbt'; did you mean factory-mbr?");
    EXPECT_EQ(Refused("./none.json"), "./none.json: there is no such file");
    EXPECT_EQ(kestova_open_pc(nullptr), nullptr);
    EXPECT_EQ(Utf8(LastProblem().words), "no PC was named");
}

TEST_F(CEmulatedPc, DescriptionWithAMistake_Opened_NamesFileAndPlace) {
    const std::string file = folder_.Path() / "pc.json";
    std::ofstream(file) << R"({"disks": [{"size": -1}]})";
    EXPECT_THAT(Refused(file), StartsWith(file + ": disks[0]"));
    std::ofstream(file) << R"({"disks": [{"number": 0, "image": "disk.img"}]})";
    EXPECT_EQ(Refused(file), file + ": it is on disk images, which this library does not open");
}

TEST_F(CEmulatedPc, SecondPc_Opened_IsRefusedUntilTheFirstIsClosed) {
    Open("factory-mbr");
    EXPECT_EQ(Refused("factory-gpt"), "a PC is open in this process already");
    EXPECT_EQ(kestova_close_pc(pc_), 0);
    EXPECT_EQ(Utf8(LastProblem().words), "a handle is still open");
    ASSERT_EQ(kestova_close(std::exchange(handle_, nullptr)), 1);
    EXPECT_EQ(kestova_close_pc(pc_), 1);
    EXPECT_EQ(kestova_close_pc(pc_), 0);
    EXPECT_EQ(Utf8(LastProblem().words), "this PC is not open");
    Open("factory-gpt");
    int style = 0;
    EXPECT_EQ(kestova_get_disk_style(handle_, &style), 1);
    EXPECT_EQ(style, KESTOVA_STYLE_GPT);
}

TEST_F(CEmulatedPc, Switched_Saved_OpensAsTheSwitchedPc) {
    const std::string file = folder_.Path() / "switched.json";
    Open("factory-mbr");
    ASSERT_EQ(kestova_set_rcvprt_active(handle_), KESTOVA_SWITCH_DONE);
    ASSERT_EQ(kestova_save(pc_, file.c_str()), 1);
    CInterfaceTest::TearDown();
    Open(file.c_str());
    EXPECT_EQ(kestova_get_active_partition_number(handle_), 1);
    EXPECT_EQ(kestova_save(pc_, (folder_.Path() / "none" / "pc.json").c_str()), 0);
    EXPECT_THAT(Utf8(LastProblem().words), HasSubstr("pc.json: cannot be written"));
    EXPECT_EQ(kestova_save(pc_, nullptr), 0);
}

TEST_F(CEmulatedPc, CallThatFails_Switch_FailsAndTheTraceShowsIt) {
    Open("factory-mbr");
    ASSERT_EQ(kestova_fail(pc_, "IVdsAdvancedDisk::ChangeAttributes+=E_FAIL"), 1)
        << Utf8(LastProblem().words);
    Trace();
    EXPECT_EQ(kestova_set_rcvprt_active(handle_), KESTOVA_SWITCH_FLAG_NOT_SET);
    EXPECT_THAT(Trace(),
                Contains(AllOf(StartsWith("IVdsAdvancedDisk::ChangeAttributes("), HasSubstr("(injected)"))));
    EXPECT_EQ(kestova_get_active_partition_number(handle_), 2);
    EXPECT_EQ(kestova_fail(pc_, "Nonsense=1"), 0);
    EXPECT_THAT(Utf8(LastProblem().words), StartsWith("kestova_fail 'Nonsense=1': "));
}

TEST_F(CEmulatedPc, ShortBuffer_TraceRead_KeepsTheLine) {
    Open("factory-mbr");
    const unsigned int length = kestova_trace_next(pc_, nullptr, 0);
    ASSERT_GT(length, 4U);
    std::string line(length, '#');
    EXPECT_EQ(kestova_trace_next(pc_, line.data(), length), length);
    EXPECT_EQ(line, std::string(length, '#'));
    line.resize(length + 1);
    EXPECT_EQ(kestova_trace_next(pc_, line.data(), length + 1), length);
    EXPECT_EQ(line.back(), '\0');
    EXPECT_THAT(line, HasSubstr("("));
    Trace();
    EXPECT_EQ(kestova_trace_next(pc_, line.data(), length + 1), 0U);
    EXPECT_EQ(LastProblem().code, KESTOVA_PROBLEM_NONE);
}

TEST_F(CEmulatedPc, Handle_OpenedAndClosed_GivesEverythingBack) {
    OpenPc("factory-mbr");
    char words[4096] = "";
    EXPECT_EQ(kestova_outstanding(pc_, words, sizeof words), 0U);
    OpenHandle();
    EXPECT_GT(kestova_outstanding(pc_, words, sizeof words), 0U);
    EXPECT_THAT(words, HasSubstr("IVdsService"));
    ASSERT_EQ(kestova_close(std::exchange(handle_, nullptr)), 1);
    EXPECT_EQ(kestova_outstanding(pc_, words, sizeof words), 0U) << words;
}

TEST_F(CEmulatedPc, ComRefused_HandleOpened_SaysSo) {
    OpenPc("factory-mbr");
    ASSERT_EQ(kestova_fail(pc_, "CoInitializeEx=E_FAIL"), 1);
    EXPECT_EQ(kestova_open(), nullptr);
    EXPECT_EQ(LastProblem().code, KESTOVA_PROBLEM_SYSTEM);
    EXPECT_EQ(Utf8(LastProblem().words), "the thread could not be started, or COM not be initialised");
    EXPECT_EQ(kestova_fail(pc_, nullptr), 1);
}

// Each in a process of its own: such a PC stays open until the process ends.
class CNamedPc : public testing::Test {
  protected:
    // The words of the problem; empty without one.
    static void OpenAndEnd(const char* named) {
        named != nullptr ? setenv("KESTOVA_PC", named, 1) : unsetenv("KESTOVA_PC");
        kestova* const handle = kestova_open();
        std::fputs(Utf8(LastProblem().words).c_str(), stderr);
        std::exit(handle != nullptr && kestova_initialize(handle, 0) == 1 &&
                          kestova_get_active_partition_number(handle) == 2
                      ? 0
                      : 1);
    }
};

TEST_F(CNamedPc, Variable_HandleOpened_IsOnThatPc) {
    EXPECT_EXIT(OpenAndEnd("factory-mbr"), testing::ExitedWithCode(0), "^$");
}

TEST_F(CNamedPc, UnknownNameOrNone_HandleOpened_IsRefused) {
    EXPECT_EXIT(OpenAndEnd("factory-mbt"), testing::ExitedWithCode(1),
                "^KESTOVA_PC: there is no machine or file 'factory-mbt'");
    const char* const none = "^no PC is open: call kestova_open_pc, or name one in the variable KESTOVA_PC$";
    EXPECT_EXIT(OpenAndEnd(nullptr), testing::ExitedWithCode(1), none);
    EXPECT_EXIT(OpenAndEnd(""), testing::ExitedWithCode(1), none);
}

}  // namespace
