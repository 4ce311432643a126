// Values of platform calls in a recording. Reading throws DamagedRecording.
#pragma once

#include <concepts>
#include <limits>
#include <string>
#include <type_traits>

#include "base/wide_string.h"
#include "platform/windows_api.h"
#include "tools/kestova/recording/tape.h"

namespace recording {

using Json = Tape::Json;

template <typename Number>
concept NumberOrEnum = std::integral<Number> || std::is_enum_v<Number>;

// Text keeps units that are no UTF-16; null stays null.
Json AsJson(LPCWSTR text);
Json AsJson(const GUID& guid);
// Bytes as hexadecimal digits.
Json BytesAsJson(const void* bytes, size_t size);
// An HRESULT or another code.
Json CodeAsJson(uint32_t code);

template <NumberOrEnum Number>
Json AsJson(Number number) {
    if constexpr (std::is_enum_v<Number>) {
        return static_cast<std::underlying_type_t<Number>>(number);
    } else if constexpr (std::is_same_v<Number, WCHAR>) {
        return static_cast<uint16_t>(number);
    } else {
        return number;
    }
}

// The value of that key.
const Json& At(const Json& values, const char* name);
WideString TextFrom(const Json& value);
GUID GuidFrom(const Json& value);
std::string BytesFrom(const Json& value);
uint32_t CodeFrom(const Json& value);

template <std::integral Number>
Number NumberFrom(const Json& value) {
    if constexpr (std::is_signed_v<Number>) {
        if (!value.is_number_integer()) throw DamagedRecording("a value is no number");
        const int64_t number = value.get<int64_t>();
        if (!std::in_range<Number>(number)) throw DamagedRecording("a number does not fit");
        return static_cast<Number>(number);
    } else {
        if (!value.is_number_unsigned()) throw DamagedRecording("a value is no number from 0");
        const uint64_t number = value.get<uint64_t>();
        if (!std::in_range<Number>(number)) throw DamagedRecording("a number does not fit");
        return static_cast<Number>(number);
    }
}

template <NumberOrEnum Number>
void Read(const Json& value, Number& number) {
    if constexpr (std::is_enum_v<Number>) {
        number = static_cast<Number>(NumberFrom<std::underlying_type_t<Number>>(value));
    } else if constexpr (std::is_same_v<Number, WCHAR>) {
        number = static_cast<WCHAR>(NumberFrom<uint16_t>(value));
    } else {
        number = NumberFrom<Number>(value);
    }
}

}  // namespace recording
