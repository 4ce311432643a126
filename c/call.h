// A call of an operation through the C interface.
#pragma once

#include <algorithm>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

#include "c/handle.h"
#include "c/results.h"

namespace c_interface {

// The outputs of operations. Each is kept by the job, as the class has it, and given to the caller if he
// still waits when the operation has ended: Keep, what is there before; Give, what is there afterwards.
template <typename Ours, typename Theirs>
struct Output {
    Theirs* place;
    bool IsMissing() const { return place == nullptr; }
    Ours Keep() const { return static_cast<Ours>(*place); }
    void Give(const Ours& value) const { *place = static_cast<Theirs>(value); }
};

using NumberOutput = Output<int, int>;
using StyleOutput = Output<THardDiskType, int>;
using TypeOutput = Output<tagDiskTypeEnum, int>;
using LetterOutput = Output<WCHAR, kestova_char>;

using Text = std::vector<WCHAR>;

struct TextOutput {
    kestova_char* buffer;
    unsigned int size;
    bool IsMissing() const { return buffer == nullptr || size == 0; }
    Text Keep() const { return Text(buffer, buffer + size); }
    void Give(const Text& text) const { std::ranges::copy(text, buffer); }
};

using DriveInfos = std::vector<tagDriveInfo_t>;

struct DriveInfosOutput {
    kestova_drive_info* records;
    int count;
    bool IsMissing() const { return records == nullptr || count < 0; }
    DriveInfos Keep() const {
        DriveInfos kept;
        // So that the class gets a place also if there is no room.
        kept.reserve(static_cast<size_t>(count) + 1);
        for (int i = 0; i < count; ++i)
            kept.push_back({records[i].disk, records[i].partition, static_cast<WCHAR>(records[i].letter)});
        return kept;
    }
    void Give(const DriveInfos& kept) const {
        std::ranges::transform(kept, records, [](const tagDriveInfo_t& info) {
            return kestova_drive_info{info.iDiskNum, info.iPartNum,
                                      static_cast<kestova_char>(info.cDriveLetter)};
        });
    }
};

template <typename Operation, typename... Outputs>
class OperationJob final : public Job {
  public:
    OperationJob(const char* name, int ending, Operation operation, const Outputs&... outputs)
        : Job(name), result(ending), kept(outputs.Keep()...), operation_(std::move(operation)) {}

    Problem Run(Kestova& object) override {
        result = static_cast<int>(
            std::apply([&](auto&... outputs) { return operation_(object, outputs...); }, kept));
        const OperationResults* const results = FindResults(Name());
        Problem outcome{.operation = Name()};
        if (results == nullptr || !HasResult(*results)) return outcome;
        if (IsFailure(*results, result)) outcome.code = KESTOVA_PROBLEM_FAILED;
        outcome.result = result;
        return outcome;
    }

    int result;
    std::tuple<decltype(std::declval<Outputs>().Keep())...> kept;

  private:
    Operation operation_;
};

// Makes the call on the handle's thread. `ending` is the result if it cannot be made; the outputs are then
// unchanged.
template <typename Operation, typename... Outputs>
int Call(const kestova* handle, const char* name, int ending, Operation operation,
         Outputs... outputs) noexcept {
    return Attempt(ending, [&] {
        const std::shared_ptr<Handle> found = Find(handle, name);
        if ((outputs.IsMissing() || ...))
            throw Refusal{{.code = KESTOVA_PROBLEM_ARGUMENT, .operation = name}};
        const auto job = std::make_shared<OperationJob<Operation, Outputs...>>(
            name, ending, std::move(operation), outputs...);
        const kestova_problem problem = found->Run(job);
        SetProblem(problem);
        if (problem.code == KESTOVA_PROBLEM_BUSY || problem.code == KESTOVA_PROBLEM_STOPPED) return ending;
        std::apply([&](const auto&... kept) { (outputs.Give(kept), ...); }, job->kept);
        return job->result;
    });
}

}  // namespace c_interface
