#include "tools/kestova/recording/tape.h"

#include "base/hexadecimal.h"

namespace {

using Json = Tape::Json;

constexpr intptr_t invalid = -1;
// Handles that are made up begin here and are apart by that, so that none has a value with a meaning.
constexpr uintptr_t firstHandle = 0x10000;
constexpr uintptr_t handleStep = 4;
constexpr uint64_t mostHandles = 1000000;

// HKEY_CLASSES_ROOT and the others: their values are sign-extended where pointers are longer.
constexpr uint32_t firstPredefinedKey = 0x80000000;
constexpr uint32_t lastPredefinedKey = 0x800000FF;

bool IsPredefined(const void* handle) {
    const auto value = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(handle));
    const auto extended = static_cast<uintptr_t>(static_cast<intptr_t>(static_cast<int32_t>(value)));
    return extended == reinterpret_cast<uintptr_t>(handle) && value >= firstPredefinedKey &&
           value <= lastPredefinedKey;
}

}  // namespace

Json HandleNumbers::Add(const void* handle) {
    if (handle == nullptr || reinterpret_cast<intptr_t>(handle) == invalid) return NameOf(handle);
    return numbers_[handle] = ++last_;
}

Json HandleNumbers::NameOf(const void* handle) const {
    if (handle == nullptr) return nullptr;
    if (reinterpret_cast<intptr_t>(handle) == invalid) return invalid;
    if (IsPredefined(handle)) return Hex(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(handle)), 8);
    const auto known = numbers_.find(handle);
    return known != numbers_.end() ? Json(known->second) : Json("unknown");
}

void* HandleNumbers::Restore(const Json& name) {
    if (name.is_null()) return nullptr;
    if (name == invalid) return reinterpret_cast<void*>(invalid);
    if (!name.is_number_unsigned() || name.get<uint64_t>() > mostHandles)
        throw DamagedRecording("a handle is neither a number nor null");
    const uint64_t number = name.get<uint64_t>();
    void* const handle = reinterpret_cast<void*>(firstHandle + handleStep * static_cast<uintptr_t>(number));
    numbers_[handle] = number;
    return handle;
}
