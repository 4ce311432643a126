#include "device/wmi_instances.h"

HRESULT OpenInstances(IWbemServices* services, const Bstr& className,
                      ComPtr<IEnumWbemClassObject>& instances) {
    const HRESULT result = services->CreateInstanceEnum(
        className.Get(), WBEM_FLAG_RETURN_IMMEDIATELY | WBEM_FLAG_FORWARD_ONLY, nullptr, instances.Put());
    return WithInterface(result, instances.Get());
}

HRESULT ReadNext(IEnumWbemClassObject* instances, std::initializer_list<TextProperty> properties,
                 bool& complete) {
    complete = false;
    ComPtr<IWbemClassObject> instance;
    ULONG returned = 0;
    HRESULT result = instances->Next(static_cast<LONG>(WBEM_INFINITE), 1, instance.Put(), &returned);
    if (FAILED(result) || !instance) return result;
    for (const TextProperty& property : properties) {
        Variant value;
        result = instance->Get(property.name, 0, value.Put(), nullptr, nullptr);
        if (FAILED(result)) return result;
        property.text = value.Text();
    }
    complete = true;
    return result;
}
