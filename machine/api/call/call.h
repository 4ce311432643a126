// Every emulated call goes through Answer(): it writes the call and its arguments into the journal,
// consults the fault plan, and only then runs the body.
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "base/utf.h"
#include "machine/calls/call_table.h"
#include "machine/journal/emulated_pc.h"

namespace machine {

// Arguments and results are written to the journal in decimal, codes and flags in hexadecimal.
std::string Hex(uint64_t value);

// For a pointer of which only matters whether there is one: "null" or "given". For text: "null" or the text.
std::string Presence(const void* pointer);
std::string TextOrNull(const WCHAR* text);

using Arguments = std::vector<std::string>;

// Adds what the journal does not show of a call; made only for who asks.
template <typename MakeArguments>
void NoteUnshown(const char* call, MakeArguments arguments) {
    const Turn turn;
    Journal& journal = EmulatedPc::Current().journal;
    if (journal.KeepsUnshown()) journal.AddUnshown(call, arguments());
}

// What a call of a kind that reports failures by the last error returns for one.
template <typename R>
R Failed(FailsWith failsWith) {
    if constexpr (std::is_pointer_v<R>) {
        return failsWith == FailsWith::InvalidHandle ? reinterpret_cast<R>(static_cast<intptr_t>(-1))
                                                     : nullptr;
    } else {
        return R{};
    }
}

// How a call of that kind reports failure with that code.
template <typename R>
R Failure(EmulatedPc& pc, FailsWith failsWith, uint32_t code) {
    if constexpr (std::is_pointer_v<R>) {
        pc.lastError = code;
        return Failed<R>(failsWith);
    } else {
        if (failsWith == FailsWith::FalseAndLastError || failsWith == FailsWith::ZeroAndLastError) {
            pc.lastError = code;
            return Failed<R>(failsWith);
        }
        return static_cast<R>(code);
    }
}

// A result as text for the journal.
template <typename R>
std::string ResultText(FailsWith failsWith, R result) {
    if constexpr (std::is_pointer_v<R>) {
        if (result == nullptr) return "null";
        return reinterpret_cast<intptr_t>(result) == -1 ? "INVALID_HANDLE_VALUE" : "<pointer>";
    } else {
        return failsWith == FailsWith::Hresult ? Hex(static_cast<uint32_t>(result)) : std::to_string(result);
    }
}

// What the journal keeps of a result that is not a plain success.
template <typename R>
uint32_t ResultCode(const EmulatedPc& pc, FailsWith failsWith, R result) {
    switch (failsWith) {
        case FailsWith::Value:
            return 0;
        case FailsWith::Hresult:
        case FailsWith::Status:
            if constexpr (!std::is_pointer_v<R>) return static_cast<uint32_t>(result);
            break;
        default:
            break;
    }
    return result == Failed<R>(failsWith) ? pc.lastError : 0;
}

// Whether a call has outputs besides its result, which a failure can leave filled.
inline bool HasOutputs(FailsWith failsWith) {
    switch (failsWith) {
        case FailsWith::NullAndLastError:
        case FailsWith::InvalidHandle:
        case FailsWith::Value:
            return false;
        default:
            return true;
    }
}

// Whether a call does its work before that rule replaces its result: if the rule asks for the outputs, if the
// call changes the PC, and if the result is another success, such as S_FALSE, which comes with outputs.
inline bool HasEffect(const CallInfo& info, const FaultRule& rule) {
    if (rule.withOutputs && HasOutputs(info.failsWith)) return true;
    const bool otherSuccess =
        info.failsWith == FailsWith::Hresult && rule.code != 0 && rule.code <= INT32_MAX;
    return rule.afterEffect && (info.changesPc || otherSuccess);
}

// Performs one call. `body` takes the PC and returns the result; a body that fails calls Failure itself.
// The caller clears the outputs first, because an injected failure does not run the body. `count` is the
// output that a rule can replace, of calls that have one.
template <typename R, typename Body>
R Answer(CallName call, std::vector<std::string> arguments, Body body, ULONG* count = nullptr) {
    const Turn turn;
    EmulatedPc& pc = EmulatedPc::Current();
    const CallInfo& info = call.Info();
    const FaultRule* const fault = pc.faults.Next(info.name, arguments);
    const uint32_t code = fault != nullptr ? fault->code : 0;
    R result{};
    if (fault == nullptr || HasEffect(info, *fault)) result = body(pc);
    if (fault != nullptr) result = Failure<R>(pc, info.failsWith, code);
    if (fault != nullptr && fault->count && count != nullptr) *count = *fault->count;
    const uint32_t reported = ResultCode(pc, info.failsWith, result);
    const bool hasSucceeded = reported == 0 && info.failsWith != FailsWith::Value;
    if (!hasSucceeded || pc.journal.keepsSuccesses)
        pc.journal.Add(CallRecord{std::string(info.name), std::move(arguments),
                                  ResultText(info.failsWith, result), fault != nullptr, reported});
    return result;
}

}  // namespace machine
