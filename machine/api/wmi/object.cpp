#include "machine/api/wmi/object.h"

#include <algorithm>

#include "base/text_case.h"
#include "machine/api/com/memory.h"

namespace machine {

namespace {

// Stores the value in a VARIANT and returns its CIM type.
class VariantWriter {
  public:
    VariantWriter(EmulatedPc& pc, VARIANT& variant) : pc_(pc), variant_(variant) {}

    CIMTYPE operator()(std::monostate) {
        V_VT(&variant_) = VT_NULL;
        return CIM_STRING;
    }
    CIMTYPE operator()(const std::string& text) {
        V_VT(&variant_) = VT_BSTR;
        V_BSTR(&variant_) = LendSystemString(pc_, ToWide(text));
        return CIM_STRING;
    }
    CIMTYPE operator()(int32_t number) {
        V_VT(&variant_) = VT_I4;
        V_I4(&variant_) = number;
        return CIM_SINT32;
    }
    CIMTYPE operator()(bool truth) {
        V_VT(&variant_) = VT_BOOL;
        V_BOOL(&variant_) = truth ? VARIANT_TRUE : VARIANT_FALSE;
        return CIM_BOOLEAN;
    }

  private:
    EmulatedPc& pc_;
    VARIANT& variant_;
};

// The value of a VARIANT; nothing for a type that no property has.
std::optional<WmiValue> ValueOf(const VARIANT& variant) {
    switch (V_VT(&variant)) {
        case VT_NULL:
            return WmiValue();
        case VT_BSTR:
            return ToUtf8(V_BSTR(&variant));
        case VT_I4:
            return static_cast<int32_t>(V_I4(&variant));
        case VT_BOOL:
            return V_BOOL(&variant) != VARIANT_FALSE;
        default:
            return std::nullopt;
    }
}

void HandOutSignature(EmulatedPc& pc, const std::vector<std::string>& names, IWbemClassObject** signature) {
    if (signature != nullptr && !names.empty())
        HandOut<IWbemClassObject>(MakeObject<WmiObject>(pc, names), signature);
}

}  // namespace

WmiProperties AbsentProperties(const std::vector<std::string>& names) {
    WmiProperties properties;
    for (const std::string& name : names)
        properties.emplace_back(name, WmiValue());
    return properties;
}

const WmiMethod* FindMethod(const WmiClass& definition, std::string_view name) {
    const auto found = std::find_if(definition.methods.begin(), definition.methods.end(),
                                    [&](const WmiMethod& method) { return SameName(method.name, name); });
    return found != definition.methods.end() ? &*found : nullptr;
}

WmiObject::WmiObject(const WmiClass* definition, bool spawns, WmiProperties properties)
    : UncalledObject(*this, IID_IWbemClassObject, "IWbemClassObject"),
      definition_(definition),
      spawns_(spawns),
      properties_(std::move(properties)) {}

WmiObject::WmiObject(const WmiClass& definition)
    : WmiObject(&definition, true, AbsentProperties(definition.properties)) {}

WmiObject::WmiObject(const std::vector<std::string>& names)
    : WmiObject(nullptr, true, AbsentProperties(names)) {}

WmiObject::WmiObject(WmiProperties properties) : WmiObject(nullptr, false, std::move(properties)) {}

HRESULT WmiObject::Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type, LONG* flavor) {
    return Call("IWbemClassObject::Get", {ToUtf8(name)}, [&](EmulatedPc& pc) {
        if (name == nullptr || flags != 0) return static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER);
        const WmiValue* const property = FindProperty(properties_, ToUtf8(name));
        if (property == nullptr) return static_cast<HRESULT>(WBEM_E_NOT_FOUND);
        Empty(flavor);
        if (value != nullptr) {
            const CIMTYPE cimType = std::visit(VariantWriter(pc, *value), *property);
            if (type != nullptr) *type = cimType;
        }
        return S_OK;
    });
}

HRESULT WmiObject::Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) {
    return Call("IWbemClassObject::Put", {ToUtf8(name)}, [&](EmulatedPc&) {
        if (name == nullptr || value == nullptr || flags != 0 || type != 0)
            return static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER);
        const auto property = std::find_if(properties_.begin(), properties_.end(), [&](const auto& known) {
            return SameName(known.first, ToUtf8(name));
        });
        if (property == properties_.end()) return static_cast<HRESULT>(WBEM_E_NOT_FOUND);
        std::optional<WmiValue> put = ValueOf(*value);
        if (!put) return static_cast<HRESULT>(WBEM_E_TYPE_MISMATCH);
        property->second = std::move(*put);
        return S_OK;
    });
}

HRESULT WmiObject::SpawnInstance(LONG flags, IWbemClassObject** instance) {
    Empty(instance);
    return Call("IWbemClassObject::SpawnInstance", {}, [&](EmulatedPc& pc) {
        if (instance == nullptr || flags != 0) return static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER);
        if (!spawns_) return static_cast<HRESULT>(WBEM_E_ILLEGAL_OPERATION);
        return HandOut<IWbemClassObject>(MakeObject<WmiObject>(pc, properties_), instance);
    });
}

HRESULT WmiObject::GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** inputs,
                             IWbemClassObject** outputs) {
    Empty(inputs);
    Empty(outputs);
    return Call("IWbemClassObject::GetMethod", {ToUtf8(name)}, [&](EmulatedPc& pc) {
        if (flags != 0) return static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER);
        if (definition_ == nullptr) return static_cast<HRESULT>(WBEM_E_ILLEGAL_OPERATION);
        const WmiMethod* const method = FindMethod(*definition_, ToUtf8(name));
        if (method == nullptr) return static_cast<HRESULT>(WBEM_E_NOT_FOUND);
        HandOutSignature(pc, method->inputs, inputs);
        HandOutSignature(pc, method->outputs, outputs);
        return S_OK;
    });
}

}  // namespace machine
