#include "device/wmi_ex.h"

#include "base/owners.h"
#include "diag/log_record.h"

namespace {

// Records the failure of the call that was made last and hands its code on.
HRESULT Failed(const WCHAR* message, HRESULT result) {
    const DWORD lastError = GetLastError();
    LogRecord(LOG_LEVEL_ERROR)
        .Text(message)
        .Long(result)
        .Text(TEXT(" GetLastError: %d"))  // stands in the log as it is
        .ULong(lastError);
    return result;
}

// What a method of a class takes and gives, and the instance that carries its arguments.
struct MethodSignature {
    ComPtr<IWbemClassObject> definition;
    ComPtr<IWbemClassObject> input;   // none: the method takes no arguments
    ComPtr<IWbemClassObject> output;  // none: it gives no values
};

HRESULT FindMethod(IWbemServices* services, const WideString& className, const WideString& methodName,
                   MethodSignature& signature) {
    const Bstr name(SysAllocString(className.c_str()));
    HRESULT result = services->GetObject(name.Get(), 0, nullptr, signature.definition.Put(), nullptr);
    if (FAILED(result)) {
        return Failed(TEXT("Kestova CWMIEx::ConnectServer GetObject S_OK != hResult. hResult = "), result);
    }
    if (!signature.definition) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT("Kestova CWMIEx::ExecMethod CoSetProxyBlanket pClassObject == NULL"));
        return E_INVALIDARG;
    }
    result =
        signature.definition->GetMethod(methodName.c_str(), 0, signature.input.Put(), signature.output.Put());
    if (FAILED(result)) {
        return Failed(TEXT("Kestova CWMIEx::ConnectServer GetMethod S_OK != hResult. hResult = "), result);
    }
    return result;
}

// Fills an instance of the input signature; the method is called without input when there is none to fill.
HRESULT PutArguments(IWbemClassObject* signature, const std::vector<WideString>* names, VARIANT* arguments,
                     ComPtr<IWbemClassObject>& input) {
    if (signature == nullptr) return S_OK;
    // An instance that cannot be made is no failure.
    if (FAILED(signature->SpawnInstance(0, input.Put())) || !input || names == nullptr) return S_OK;
    for (size_t index = 0; index < names->size(); ++index) {
        const HRESULT result = input->Put((*names)[index].c_str(), 0, &arguments[index], 0);
        if (FAILED(result)) return result;
    }
    return S_OK;
}

}  // namespace

HRESULT CWMIEx::Initialize() {
    const HRESULT result = CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                                                RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    if (result == S_OK || result == RPC_E_TOO_LATE) return S_OK;
    return Failed(TEXT("Kestova CWMIEx::Initialize hResult = "), result);
}

HRESULT CWMIEx::ConnectServer(const WideString& namespacePath, IWbemLocator** locator,
                              IWbemServices** services) {
    *locator = nullptr;
    *services = nullptr;
    HRESULT result = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                      reinterpret_cast<void**>(locator));
    result = WithInterface(result, *locator);
    if (FAILED(result)) {
        return Failed(TEXT("Kestova CWMIEx::ConnectServer CoCreateInstance hResult = "), result);
    }
    const Bstr path(SysAllocString(namespacePath.c_str()));
    result = (*locator)->ConnectServer(path.Get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, services);
    result = WithInterface(result, *services);
    if (FAILED(result)) {
        return Failed(TEXT("Kestova CWMIEx::ConnectServer ConnectServer hResult = "), result);
    }
    result = CoSetProxyBlanket(*services, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                               RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
    if (FAILED(result)) {
        return Failed(TEXT("Kestova CWMIEx::ConnectServer CoSetProxyBlanket S_OK != hResult. hResult = "),
                      result);
    }
    return S_OK;
}

HRESULT CWMIEx::ExecMethod(IWbemServices* services, const WideString& className, const WideString& methodName,
                           const WideString& objectPath, const std::vector<WideString>* names,
                           VARIANT* arguments, IWbemClassObject** output, VARIANT* returnValue) {
    *output = nullptr;
    VariantInit(returnValue);
    if (services == nullptr) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT("Kestova CWMIEx::ExecMethod CoSetProxyBlanket pWbemServices == NULL"));
        return E_INVALIDARG;
    }
    if ((names == nullptr) != (arguments == nullptr)) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT(
                "Kestova CWMIEx::ExecMethod CoSetProxyBlanket pstrArrParameters or pvtArrArguments is NULL"));
        return E_INVALIDARG;
    }
    MethodSignature signature;
    HRESULT result = FindMethod(services, className, methodName, signature);
    if (FAILED(result)) return result;
    ComPtr<IWbemClassObject> input;
    result = PutArguments(signature.input.Get(), names, arguments, input);
    if (FAILED(result)) return result;

    const Bstr path(SysAllocString(objectPath.c_str()));
    const Bstr method(SysAllocString(methodName.c_str()));
    result = services->ExecMethod(path.Get(), method.Get(), 0, nullptr, input.Get(), output, nullptr);
    if (FAILED(result) || *output == nullptr) return result;
    return (*output)->Get(TEXT("ReturnValue"), 0, returnValue, nullptr, nullptr);
}
