#include "device/wmi_ex.h"

#include "base/owners.h"
#include "device/com_security.h"
#include "diag/failure_record.h"

namespace {

// Records the failure of the last call and returns its code.
HRESULT Failed(const WCHAR* message, HRESULT result) {
    // The label is written as it is, %d included.
    constexpr const WCHAR* label = TEXT(" GetLastError: %d");
    return LogFailure(LOG_LEVEL_ERROR, {message, LoggedCodes::ResultAndLastError, label}, result);
}

// The signature of a method of a class.
struct MethodSignature {
    ComPtr<IWbemClassObject> definition;
    ComPtr<IWbemClassObject> input;   // empty: the method takes no arguments
    ComPtr<IWbemClassObject> output;  // empty: it returns no values
};

HRESULT FindMethod(IWbemServices* services, const WideString& className, const WideString& methodName,
                   MethodSignature& signature) {
    const Bstr name(SysAllocString(className.c_str()));
    HRESULT result = services->GetObject(name.Get(), 0, nullptr, signature.definition.Put(), nullptr);
    if (FAILED(result)) {
        return Failed(TEXT("Kestova CWMIEx::ConnectServer GetObject S_OK != hResult. hResult = "), result);
    }
    if (!signature.definition) {
        return LogFailure(LOG_LEVEL_ERROR,
                          TEXT("Kestova CWMIEx::ExecMethod CoSetProxyBlanket pClassObject == NULL"),
                          E_INVALIDARG);
    }
    result =
        signature.definition->GetMethod(methodName.c_str(), 0, signature.input.Put(), signature.output.Put());
    if (FAILED(result)) {
        return Failed(TEXT("Kestova CWMIEx::ConnectServer GetMethod S_OK != hResult. hResult = "), result);
    }
    return result;
}

// Fills an instance of the input signature; without one the method is called without input.
HRESULT PutArguments(IWbemClassObject* signature, const std::vector<WideString>* names, VARIANT* arguments,
                     ComPtr<IWbemClassObject>& input) {
    if (signature == nullptr) return S_OK;
    // Failing to create the instance is not a failure: the method is called without input.
    if (FAILED(signature->SpawnInstance(0, input.Put())) || !input || names == nullptr) return S_OK;
    for (size_t index = 0; index < names->size(); ++index) {
        const HRESULT result = input->Put((*names)[index].c_str(), 0, &arguments[index], 0);
        if (FAILED(result)) return result;
    }
    return S_OK;
}

}  // namespace

HRESULT CWMIEx::Initialize() {
    const HRESULT result = InitializeComSecurity();
    if (result == S_OK) return S_OK;
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
        return LogFailure(LOG_LEVEL_ERROR,
                          TEXT("Kestova CWMIEx::ExecMethod CoSetProxyBlanket pWbemServices == NULL"),
                          E_INVALIDARG);
    }
    if ((names == nullptr) != (arguments == nullptr)) {
        return LogFailure(
            LOG_LEVEL_ERROR,
            TEXT("Kestova CWMIEx::ExecMethod CoSetProxyBlanket pstrArrParameters or pvtArrArguments is NULL"),
            E_INVALIDARG);
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
