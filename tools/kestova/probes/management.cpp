#include "tools/kestova/probes/management.h"

#include <array>

#include "base/hexadecimal.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/enumerations.h"

namespace {

// Paths name the computer, which every PC has its own name for.
std::string WithoutComputer(const WideString& text) {
    const WideString marks = TEXT("\\\\");
    const size_t end = text.find(TEXT('\\'), marks.size());
    const bool isPath = text.starts_with(marks) && text.find(TEXT(":Win32_")) != WideString::npos;
    return Quoted(isPath ? TEXT("\\\\.") + text.substr(std::min(end, text.size())) : text);
}

std::string Words(const VARIANT& value) {
    switch (V_VT(&value)) {
        case VT_BSTR:
            return WithoutComputer(V_BSTR(&value) != nullptr ? WideString(V_BSTR(&value)) : WideString());
        case VT_I4:
            return std::to_string(V_I4(&value));
        case VT_BOOL:
            return V_BOOL(&value) ? "true" : "false";
        case VT_NULL:
            return "null";
        default:
            return "a value of type " + std::to_string(V_VT(&value));
    }
}

bool TimedOut(HRESULT result) {
    return result == static_cast<HRESULT>(WBEM_S_TIMEDOUT);
}

// The library waits without end.
HRESULT ProbeNext(Probes& probes, const std::string& list, IEnumWbemClassObject& instances,
                  ComPtr<IWbemClassObject>& instance) {
    ULONG returned = 0;
    const HRESULT result = instances.Next(longestWait, 1, instance.Put(), &returned);
    const std::string answer =
        HresultWords(result) + ", " + std::to_string(returned) + ", " + Presence(instance.Get());
    probes.Add("IEnumWbemClassObject::Next", list + ", 1", TimedOut(result) ? noAnswer : answer,
               "IEnumWbemClassObject::Next(-1, 1)");
    return result;
}

}  // namespace

HRESULT ForEachInstance(IEnumWbemClassObject& list,
                        const std::function<void(IWbemClassObject& instance)>& action) {
    for (int position = 0; position < longestList; ++position) {
        ComPtr<IWbemClassObject> instance;
        ULONG returned = 0;
        const HRESULT result = list.Next(longestWait, 1, instance.Put(), &returned);
        if (FAILED(result) || TimedOut(result)) return result;
        if (!instance || returned == 0) return static_cast<HRESULT>(WBEM_S_FALSE);
        action(*instance.Get());
    }
    return S_OK;
}

ComPtr<IWbemServices> ProbeConnection(Probes& probes, const WCHAR* space) {
    ComPtr<IWbemServices> services;
    ComPtr<IWbemLocator> locator;
    CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                     reinterpret_cast<void**>(locator.Put()));
    if (!locator) return services;
    const Bstr path(SysAllocString(space));
    const HRESULT result =
        locator->ConnectServer(path.Get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, services.Put());
    probes.Add("IWbemLocator::ConnectServer", Quoted(space),
               HresultWords(result) + ", " + Presence(services.Get()));
    if (!services) return services;
    const HRESULT set =
        CoSetProxyBlanket(services.Get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                          RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
    probes.Add("CoSetProxyBlanket", Quoted(space), HresultWords(set));
    return services;
}

WmiObjects ProbeInstances(Probes& probes, IWbemServices& services, const WCHAR* className, LONG flags) {
    const std::string list = Quoted(className) + ", flags " + Hex(static_cast<ULONG>(flags), 1);
    const Bstr name(SysAllocString(className));
    ComPtr<IEnumWbemClassObject> instances;
    const HRESULT result = services.CreateInstanceEnum(name.Get(), flags, nullptr, instances.Put());
    probes.Add("IWbemServices::CreateInstanceEnum", list,
               HresultWords(result) + ", " + Presence(instances.Get()));
    WmiObjects all;
    if (!instances) return all;
    while (all.size() < longestList) {
        ComPtr<IWbemClassObject> next;
        if (TimedOut(ProbeNext(probes, list, *instances.Get(), next))) return all;
        if (!next) break;
        all.push_back(std::move(next));
    }
    ComPtr<IWbemClassObject> behind;
    ProbeNext(probes, list + ", behind the end", *instances.Get(), behind);
    return all;
}

WideString ProbeProperty(Probes& probes, const std::string& object, IWbemClassObject& of, const WCHAR* name) {
    Variant value;
    const HRESULT result = of.Get(name, 0, value.Put(), nullptr, nullptr);
    probes.Add("IWbemClassObject::Get", object + ", " + Quoted(name),
               HresultWords(result) + (SUCCEEDED(result) ? ", " + Words(value.Get()) : ""));
    return value.Text();
}

ComPtr<IWbemClassObject> ProbeObject(Probes& probes, IWbemServices& services, const WideString& path) {
    const Bstr name(SysAllocString(path.c_str()));
    ComPtr<IWbemClassObject> object;
    const HRESULT result = services.GetObject(name.Get(), 0, nullptr, object.Put(), nullptr);
    probes.Add("IWbemServices::GetObject", Quoted(path),
               HresultWords(result) + ", " + Presence(object.Get()));
    return object;
}
