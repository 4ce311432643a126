// The C interface as a program in C uses it, with what tests ask of it.
#pragma once

#include <string>
#include <vector>

#include "base/utf.h"
#include "kestova/kestova_c.h"

inline std::string Utf8(const kestova_char* text) {
    std::basic_string<WCHAR> wide;
    for (; *text != 0; ++text)
        wide += static_cast<WCHAR>(*text);
    return ToUtf8(wide);
}

// Of the calling thread's last call; of the last that ended on a handle.
inline kestova_problem LastProblem(kestova* handle = nullptr) {
    kestova_problem problem{};
    problem.size = sizeof problem;
    EXPECT_EQ(kestova_last_problem(handle, &problem), 1);
    return problem;
}

// An emulated PC, and a handle on which Initialize was called.
class CInterfaceTest : public testing::Test {
  protected:
    void OpenPc(const char* machine) {
        pc_ = kestova_open_pc(machine);
        ASSERT_NE(pc_, nullptr) << Utf8(LastProblem().words);
    }
    void OpenHandle() {
        handle_ = kestova_open();
        ASSERT_NE(handle_, nullptr) << Utf8(LastProblem().words);
        ASSERT_EQ(kestova_initialize(handle_, 0), KESTOVA_INITIALIZE_READY);
    }
    void Open(const char* machine) {
        OpenPc(machine);
        OpenHandle();
    }
    void TearDown() override {
        if (handle_ != nullptr) EXPECT_EQ(kestova_close(handle_), 1);
        if (pc_ != nullptr) EXPECT_EQ(kestova_close_pc(pc_), 1);
    }

    // The calls and records since the last call of this, a line each.
    std::vector<std::string> Trace() {
        std::vector<std::string> lines;
        std::string line(4096, '\0');
        while (const unsigned int length =
                   kestova_trace_next(pc_, line.data(), static_cast<unsigned int>(line.size())))
            lines.push_back(line.substr(0, length));
        return lines;
    }

    kestova_pc* pc_ = nullptr;
    kestova* handle_ = nullptr;
};
