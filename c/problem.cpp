#include "c/problem.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <system_error>
#include <utility>

#include "base/utf.h"
#include "c/results.h"

namespace c_interface {

namespace {

thread_local kestova_problem ofThread{};

const char* WordsOf(kestova_problem_code code) {
    switch (code) {
        case KESTOVA_PROBLEM_NONE:
        case KESTOVA_PROBLEM_FAILED:
            break;
        case KESTOVA_PROBLEM_HANDLE:
            return "the handle is null or closed";
        case KESTOVA_PROBLEM_ARGUMENT:
            return "a pointer is null, or a size is not possible";
        case KESTOVA_PROBLEM_BUSY:
            return "the handle is busy: a call that nobody waits for is running, or a log function called";
        case KESTOVA_PROBLEM_STOPPED:
            return "the caller stopped waiting; the call runs on";
        case KESTOVA_PROBLEM_MEMORY:
            return "memory ran out";
        case KESTOVA_PROBLEM_SYSTEM:
            return "the thread could not be started, or COM not be initialised";
        case KESTOVA_PROBLEM_EXCEPTION:
            return "an unexpected exception was thrown";
        case KESTOVA_PROBLEM_PC:
            return "the emulated PC cannot be used";
    }
    return "";
}

std::string WordsOf(const Problem& problem) {
    if (!problem.words.empty()) return problem.words;
    const OperationResults* const results = FindResults(problem.operation);
    if (results != nullptr && problem.result) return std::string(WordsOf(*results, *problem.result));
    return WordsOf(problem.code);
}

}  // namespace

void SetProblem(const kestova_problem& problem) noexcept {
    ofThread = problem;
}

const kestova_problem& LastProblem() noexcept {
    return ofThread;
}

kestova_problem Shown(const Problem& problem) noexcept {
    kestova_problem shown{};
    shown.code = problem.code;
    shown.has_result = problem.result.has_value();
    shown.result = problem.result.value_or(0);
    try {
        PutText(ToWide(std::string(problem.operation)), shown.operation, std::size(shown.operation));
        PutText(ToWide(WordsOf(problem)), shown.words, std::size(shown.words));
        PutText(problem.record, shown.record, std::size(shown.record));
    } catch (...) {
        // Without memory the code alone has to do.
    }
    return shown;
}

Problem Caught() noexcept {
    try {
        throw;
    } catch (Refusal& refusal) {
        return std::move(refusal.problem);
    } catch (const std::bad_alloc&) {
        return {.code = KESTOVA_PROBLEM_MEMORY};
    } catch (const std::system_error&) {
        return {.code = KESTOVA_PROBLEM_SYSTEM};
    } catch (...) {
        return {.code = KESTOVA_PROBLEM_EXCEPTION};
    }
}

void PutText(std::basic_string_view<WCHAR> text, kestova_char* buffer, size_t size) noexcept {
    if (size == 0) return;
    const size_t count = std::min(text.size(), size - 1);
    std::ranges::transform(text.substr(0, count), buffer,
                           [](WCHAR unit) { return static_cast<kestova_char>(unit); });
    buffer[count] = 0;
}

}  // namespace c_interface
