#include "machine/api/wmi/services.h"

#include <algorithm>

#include "base/text_case.h"
#include "machine/api/call/call.h"
#include "machine/api/wmi/locator.h"
#include "machine/api/wmi/object.h"

namespace machine {

namespace {

constexpr LONG maximumWait = 0x80;  // WBEM_FLAG_CONNECT_USE_MAX_WAIT, which not every toolchain has

constexpr HRESULT Code(WBEMSTATUS status) {
    return static_cast<HRESULT>(status);
}

struct Located {
    const WmiClass* definition = nullptr;
    std::optional<WmiProperties> instance;  // absent: the path names the class
};

// Resolves a path, or returns the code that rejects it.
HRESULT Locate(EmulatedPc& pc, const std::string& space, const std::string& path, Located& found) {
    const std::optional<WmiPath> read = ReadWmiPath(path);
    if (!read || (!read->space.empty() && !SameName(read->space, space)))
        return Code(WBEM_E_INVALID_OBJECT_PATH);
    found.definition = WmiRepository::Of(pc).FindClass(pc.facts, space, read->className);
    if (found.definition == nullptr) return Code(WBEM_E_NOT_FOUND);
    if (!read->value) return S_OK;
    const std::string& key = found.definition->properties.front();
    if (!read->key.empty() && !SameName(read->key, key)) return Code(WBEM_E_INVALID_OBJECT_PATH);
    for (WmiProperties& instance : InstancesOf(pc.facts, *found.definition)) {
        const std::string* const value = std::get_if<std::string>(&instance.front().second);
        if (value == nullptr || !read->Names(*value)) continue;
        found.instance = std::move(instance);
        return S_OK;
    }
    return Code(WBEM_E_NOT_FOUND);
}

}  // namespace

HRESULT WmiLocator::ConnectServer(const BSTR resource, const BSTR user, const BSTR password,
                                  const BSTR locale, LONG flags, const BSTR authority, IWbemContext* context,
                                  IWbemServices** services) {
    Empty(services);
    NoteUnshown("IWbemLocator::ConnectServer", [&] {
        return Arguments{TextOrNull(user),      TextOrNull(password),  TextOrNull(locale),
                         std::to_string(flags), TextOrNull(authority), Presence(context)};
    });
    return Call("IWbemLocator::ConnectServer", {ToUtf8(resource)}, [&](EmulatedPc& pc) {
        if (resource == nullptr || services == nullptr || (flags & ~maximumWait) != 0)
            return Code(WBEM_E_INVALID_PARAMETER);
        if (user != nullptr || password != nullptr) return Code(WBEM_E_LOCAL_CREDENTIALS);
        const std::optional<std::string> space = NamespaceOf(ToUtf8(resource));
        if (!space || !WmiRepository::Of(pc).HasNamespace(pc.facts, *space))
            return Code(WBEM_E_INVALID_NAMESPACE);
        return HandOut<IWbemServices>(MakeObject<WmiServices>(pc, *space), services);
    });
}

HRESULT WmiServices::GetObject(const BSTR path, LONG flags, IWbemContext* context, IWbemClassObject** object,
                               IWbemCallResult** callResult) {
    Empty(object);
    NoteUnshown("IWbemServices::GetObject", [&] {
        return Arguments{Presence(context), Presence(callResult)};
    });
    return Call("IWbemServices::GetObject", {ToUtf8(path)}, [&](EmulatedPc& pc) {
        if (object == nullptr || flags != 0) return Code(WBEM_E_INVALID_PARAMETER);
        Located located;
        const HRESULT refusal = Locate(pc, space_, ToUtf8(path), located);
        if (refusal != S_OK) return refusal;
        WmiObject& found = located.instance ? MakeObject<WmiObject>(pc, std::move(*located.instance))
                                            : MakeObject<WmiObject>(pc, *located.definition);
        return HandOut<IWbemClassObject>(found, object);
    });
}

HRESULT WmiServices::CreateInstanceEnum(const BSTR className, LONG flags, IWbemContext* context,
                                        IEnumWbemClassObject** enumerator) {
    Empty(enumerator);
    NoteUnshown("IWbemServices::CreateInstanceEnum", [&] { return Arguments{Presence(context)}; });
    return Call(
        "IWbemServices::CreateInstanceEnum", {ToUtf8(className), std::to_string(flags)}, [&](EmulatedPc& pc) {
            if (enumerator == nullptr) return Code(WBEM_E_INVALID_PARAMETER);
            const WmiClass* const definition =
                WmiRepository::Of(pc).FindClass(pc.facts, space_, ToUtf8(className));
            const bool failsLate =
                pc.facts.switches.absentClassFailsLate && (flags & WBEM_FLAG_RETURN_IMMEDIATELY) != 0;
            if (definition == nullptr && !failsLate) return Code(WBEM_E_INVALID_CLASS);
            WmiEnumerator& made = definition != nullptr
                                      ? MakeObject<WmiEnumerator>(pc, InstancesOf(pc.facts, *definition))
                                      : MakeObject<WmiEnumerator>(pc, Code(WBEM_E_INVALID_CLASS));
            return HandOut<IEnumWbemClassObject>(made, enumerator);
        });
}

HRESULT WmiServices::ExecMethod(const BSTR path, const BSTR method, LONG flags, IWbemContext* context,
                                IWbemClassObject* inputs, IWbemClassObject** outputs,
                                IWbemCallResult** callResult) {
    Empty(outputs);
    NoteUnshown("IWbemServices::ExecMethod", [&] {
        return Arguments{Presence(context), Presence(inputs), Presence(callResult)};
    });
    return Call("IWbemServices::ExecMethod", {ToUtf8(path), ToUtf8(method)}, [&](EmulatedPc& pc) {
        if (flags != 0) return Code(WBEM_E_INVALID_PARAMETER);
        Located located;
        const HRESULT refusal = Locate(pc, space_, ToUtf8(path), located);
        if (refusal != S_OK) return refusal;
        const WmiMethod* const found = FindMethod(*located.definition, ToUtf8(method));
        if (found == nullptr) return Code(WBEM_E_INVALID_METHOD);
        const WmiObject* const given = dynamic_cast<WmiObject*>(inputs);
        if (inputs != nullptr && given == nullptr) return Code(WBEM_E_INVALID_PARAMETER);
        WmiProperties results = AbsentProperties(found->outputs);
        const HRESULT result =
            found->run(pc, located.instance.value_or(WmiProperties()),
                       given != nullptr ? given->Properties() : AbsentProperties(found->inputs), results);
        if (FAILED(result) || outputs == nullptr || results.empty()) return result;
        HandOut<IWbemClassObject>(MakeObject<WmiObject>(pc, std::move(results)), outputs);
        return result;
    });
}

HRESULT WmiEnumerator::Next(LONG timeout, ULONG count, IWbemClassObject** objects, ULONG* returned) {
    if (objects != nullptr) std::fill_n(objects, count, nullptr);
    Empty(returned);
    return Call(
        "IEnumWbemClassObject::Next", {std::to_string(timeout), std::to_string(count)},
        [&](EmulatedPc& pc) {
            if (objects == nullptr || returned == nullptr) return Code(WBEM_E_INVALID_PARAMETER);
            if (FAILED(failure_)) return failure_;
            while (*returned < count && position_ < instances_.size()) {
                HandOut<IWbemClassObject>(MakeObject<WmiObject>(pc, instances_[position_++]),
                                          &objects[(*returned)++]);
            }
            return *returned == count ? S_OK : Code(WBEM_S_FALSE);
        },
        returned);
}

}  // namespace machine
