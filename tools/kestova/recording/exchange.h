// One platform call of the library: performed and written down, or answered from a recording.
#pragma once

#include "tools/kestova/recording/parameters.h"

namespace recording {

// --- how a call reports its result ---

// Success is 0 or positive.
struct Hresult {
    using Type = HRESULT;
    static constexpr Type failure = E_FAIL;
    static bool IsSuccess(Type result) { return SUCCEEDED(result); }
    static Json Tell(Type result, Tape&) { return CodeAsJson(static_cast<uint32_t>(result)); }
    static Type Restore(const Json& result, Tape&) { return static_cast<Type>(CodeFrom(result)); }
};

// Success is 0.
struct Status {
    using Type = LSTATUS;
    static constexpr Type failure = ERROR_GEN_FAILURE;
    static bool IsSuccess(Type result) { return result == ERROR_SUCCESS; }
    static Json Tell(Type result, Tape&) { return result; }
    static Type Restore(const Json& result, Tape&) { return NumberFrom<Type>(result); }
};

// A flag or a count: success is anything but 0.
template <typename Number, Number onFailure = 0>
struct Counted {
    using Type = Number;
    static constexpr Type failure = onFailure;
    static bool IsSuccess(Type result) { return result != 0; }
    static Json Tell(Type result, Tape&) { return result; }
    static Type Restore(const Json& result, Tape&) { return NumberFrom<Type>(result); }
};
using Flag = Counted<BOOL>;

template <typename Handle, intptr_t onFailure>
struct Opened {
    using Type = Handle;
    static inline const Type failure = reinterpret_cast<Type>(onFailure);
    static bool IsSuccess(Type result) { return result != failure; }
    static Json Tell(Type result, Tape& tape) { return tape.handles.Add(result); }
    static Type Restore(const Json& result, Tape& tape) { return tape.handles.Restore(result); }
};

// --- the exchange ---

template <typename Parameter>
void AskOne(const Parameter& parameter, Json& in, Tape& tape) {
    if constexpr (requires { parameter.Ask(in, tape); }) parameter.Ask(in, tape);
}

template <typename Parameter>
void TellOne(const Parameter& parameter, Json& out, Tape& tape, bool succeeded) {
    if constexpr (requires { parameter.Tell(out, tape, succeeded); }) parameter.Tell(out, tape, succeeded);
}

template <typename Parameter>
void RestoreOne(const Parameter& parameter, const Json& out, Tape& tape) {
    if constexpr (requires { parameter.Restore(out, tape); }) parameter.Restore(out, tape);
}

// What the library asks: the beginning of the call's line.
template <typename... Parameters>
Json Asked(const char* call, const IUnknown* object, Tape& tape, const Parameters&... parameters) {
    Json asked = {{"call", call}};
    if (object != nullptr) asked["object"] = NumberOf(object, tape);
    Json in = Json::object();
    (AskOne(parameters, in, tape), ...);
    asked["in"] = std::move(in);
    return asked;
}

// Performs the call and adds its line. The last error is what the call left, not what the writing left.
template <typename Result, typename Perform, typename... Parameters>
typename Result::Type Record(Json line, Tape& tape, const Perform& perform, const Parameters&... parameters) {
    const typename Result::Type result = perform();
    const DWORD error = GetLastError();
    line["result"] = Result::Tell(result, tape);
    Json out = Json::object();
    (TellOne(parameters, out, tape, Result::IsSuccess(result)), ...);
    line["out"] = std::move(out);
    line["error"] = error;
    tape.Add(line);
    SetLastError(error);
    return result;
}

// Answers as recorded. After a difference each call fails.
template <typename Result, typename... Parameters>
typename Result::Type Replay(const Json& asked, Tape& tape, const Parameters&... parameters) {
    tape.lastError = ERROR_CANCELLED;
    try {
        const Json* const line = tape.Next(asked);
        if (line == nullptr) return Result::failure;
        const typename Result::Type result = Result::Restore(At(*line, "result"), tape);
        (RestoreOne(parameters, At(*line, "out"), tape), ...);
        tape.lastError = NumberFrom<uint32_t>(At(*line, "error"));
        return result;
    } catch (const DamagedRecording& damaged) {
        tape.Reject(damaged.what());
        return Result::failure;
    }
}

// `object` is the one whose method is called, null for a function; `perform` calls the platform.
template <typename Result, typename Perform, typename... Parameters>
typename Result::Type Exchange(Tape& tape, const char* call, const IUnknown* object, const Perform& perform,
                               const Parameters&... parameters) {
    Json asked = Asked(call, object, tape, parameters...);
    if (tape.Answers()) return Replay<Result>(asked, tape, parameters...);
    return Record<Result>(std::move(asked), tape, perform, parameters...);
}

}  // namespace recording
