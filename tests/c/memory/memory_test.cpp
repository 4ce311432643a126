// Memory runs out in the interface, on the caller's thread: at each allocation of each call in turn.

#include <gmock/gmock.h>

#include <cstdlib>
#include <functional>
#include <new>

#include "tests/c/interface.h"

namespace {

// Of the calling thread: the allocation at that place fails, counted from 1; 0: none does.
thread_local int failing = 0;
thread_local int allocations = 0;

void* Allocate(size_t size) {
    if (failing != 0 && ++allocations == failing) return nullptr;
    return std::malloc(size > 0 ? size : 1);
}

}  // namespace

void* operator new(size_t size) {
    if (void* const memory = Allocate(size)) return memory;
    throw std::bad_alloc();
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

namespace {

class CMemory : public CInterfaceTest {
  protected:
    // Makes the call with each of its allocations failing, until it makes fewer. Returns how many there were.
    static int FailEach(const std::function<void()>& call) {
        for (int place = 1;; ++place) {
            allocations = 0;
            failing = place;
            call();
            failing = 0;
            if (allocations < place) return place - 1;
        }
    }
};

TEST_F(CMemory, EachAllocationFails_Operation_AnswersItsFailureOrItsResult) {
    Open("factory-mbr");
    int refused = 0;
    const int places = FailEach([&] {
        int style = 77;
        const int result = kestova_get_disk_style(handle_, &style);
        failing = 0;
        EXPECT_EQ(result, KESTOVA_GET_DISK_STYLE_ASKED);
        const kestova_problem problem = LastProblem();
        if (problem.code == KESTOVA_PROBLEM_MEMORY) {
            EXPECT_EQ(style, 77);
            ++refused;
        } else {
            EXPECT_EQ(problem.code, KESTOVA_PROBLEM_NONE);
            EXPECT_EQ(style, KESTOVA_STYLE_MBR);
        }
    });
    EXPECT_GT(places, 0);
    EXPECT_GT(refused, 0);
}

TEST_F(CMemory, EachAllocationFails_Open_MakesAHandleOrNone) {
    OpenPc("factory-mbr");
    int refused = 0;
    EXPECT_GT(FailEach([&] {
                  kestova* const handle = kestova_open();
                  failing = 0;
                  if (handle == nullptr) {
                      EXPECT_EQ(LastProblem().code, KESTOVA_PROBLEM_MEMORY);
                      ++refused;
                  } else {
                      EXPECT_EQ(kestova_close(handle), 1);
                  }
              }),
              0);
    EXPECT_GT(refused, 0);
    char words[400];
    EXPECT_EQ(kestova_outstanding(pc_, words, sizeof words), 0U) << words;
}

TEST_F(CMemory, EachAllocationFails_OpenPc_OpensOneOrNone) {
    EXPECT_GT(FailEach([] {
                  kestova_pc* const pc = kestova_open_pc("factory-mbr");
                  failing = 0;
                  if (pc != nullptr) {
                      EXPECT_EQ(kestova_close_pc(pc), 1);
                  } else {
                      EXPECT_NE(LastProblem().code, KESTOVA_PROBLEM_NONE);
                  }
              }),
              0);
    OpenPc("factory-mbr");
}

TEST_F(CMemory, EachAllocationFails_RefusedCall_SaysAtLeastItsCode) {
    FailEach([] {
        EXPECT_EQ(kestova_set_active(nullptr, 1), 1);
        failing = 0;
        EXPECT_EQ(LastProblem().code, KESTOVA_PROBLEM_HANDLE);
    });
    kestova_char words[9];
    FailEach([&] { kestova_describe("GetFirstInternalDriveNumber", -1, words, 9); });
    EXPECT_EQ(kestova_describe("GetFirstInternalDriveNumber", -1, words, 9), 38U);
}

}  // namespace
