// WMI access: security, a namespace, a method call.
#pragma once

#include <vector>

#include "base/wide_string.h"
#include "platform/windows_api.h"

// Stateless. COM must be initialised on the calling thread; the caller releases every interface it receives.
// A failure is the platform's negative code, returned after a record; a success without an interface counts
// as E_INVALIDARG.
class CWMIEx {
  public:
    // Sets the process's COM security. The code of CoInitializeSecurity, but S_OK if security is set already
    // (RPC_E_TOO_LATE).
    static HRESULT Initialize();

    // Opens a namespace ("\\.\root\CIMV2"). The code of the first step that failed, else S_OK. If only the
    // proxy's security cannot be set, locator and services are returned nevertheless and must be released;
    // after an earlier failure, what was not created is null. Calls IWbemLocator::ConnectServer.
    static HRESULT ConnectServer(const WideString& namespacePath, IWbemLocator** locator,
                                 IWbemServices** services);

    // Calls a method of a class on an object path with named arguments and reads its "ReturnValue". `names`
    // and `arguments` correspond one to one and are not changed; without input if both are null, or if the
    // method takes none. E_INVALIDARG without services, with only one of the two lists, or for a class
    // without an object; else the code of the first step that failed, which is reading "ReturnValue" once the
    // method ran. `output` is null and `returnValue` empty if they were not reached; the caller releases the
    // first and clears the second. Calls IWbemServices::ExecMethod.
    static HRESULT ExecMethod(IWbemServices* services, const WideString& className,
                              const WideString& methodName, const WideString& objectPath,
                              const std::vector<WideString>* names, VARIANT* arguments,
                              IWbemClassObject** output, VARIANT* returnValue);
};
