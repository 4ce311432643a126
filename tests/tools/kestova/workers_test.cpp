// The processes in which a survey asks its PCs.

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

#include "tools/kestova/survey/workers.h"

namespace {

using testing::ElementsAre;

TEST(Workers, TasksOfDifferentLength_Done_AreTakenInOrder) {
    std::vector<std::string> answers;
    RunInWorkers(
        3, {.atOnce = 2}, [](size_t task) { return "answer " + std::to_string(task) + "\n"; },
        [&](size_t, const WorkerEnd& end) { answers.push_back(end.answer + end.problem); });
    EXPECT_THAT(answers, ElementsAre("answer 0\n", "answer 1\n", "answer 2\n"));
}

TEST(Workers, AnswerThatWasTornOff_IsNone) {
    std::string problem;
    RunInWorkers(
        1, {}, [](size_t) { return std::string("{\"pc\":"); },
        [&](size_t, const WorkerEnd& end) { problem = end.problem; });
    EXPECT_EQ(problem, "its worker ended with status 0 before it had answered");
}

// The pipe is at its end once nobody is left who could write to it: a worker that outlives its program keeps
// the test from ending.
TEST(Workers, ProgramKilled_EndsItsWorkers) {
    std::array<int, 2> ends = {};
    ASSERT_EQ(pipe(ends.data()), 0);
    const pid_t program = fork();
    ASSERT_GE(program, 0);
    if (program == 0) {
        RunInWorkers(
            1, {},
            [&](size_t) -> std::string {
                if (write(ends[1], "w", 1) != 1) return "";
                for (;;)
                    pause();
            },
            [](size_t, const WorkerEnd&) {});
        _exit(0);
    }
    close(ends[1]);
    char byte = '\0';
    ASSERT_EQ(read(ends[0], &byte, 1), 1);
    kill(program, SIGKILL);
    waitpid(program, nullptr, 0);
    EXPECT_EQ(read(ends[0], &byte, 1), 0);
    close(ends[0]);
}

}  // namespace
