// WMI access: security, a namespace, a method call.
#pragma once

#include <vector>

#include "base/wide_string.h"
#include "platform/windows_api.h"

// Stateless. COM must be initialised on the calling thread; every interface handed out belongs to the caller.
// A failure is a negative code, handed back as the platform gave it, after a record; a call that succeeds but
// hands out no interface counts as E_INVALIDARG.
class CWMIEx {
  public:
    // Sets the process's COM security. Security that is set already (RPC_E_TOO_LATE) counts as success: S_OK;
    // else the code of CoInitializeSecurity.
    static HRESULT Initialize();

    // Opens a namespace ("\\.\root\CIMV2"). The code of the first step that failed, else S_OK. When only the
    // proxy's security cannot be set, locator and services are handed out all the same and must be released;
    // what an earlier failure did not reach is null. Rests on IWbemLocator::ConnectServer.
    static HRESULT ConnectServer(const WideString& namespacePath, IWbemLocator** locator,
                                 IWbemServices** services);

    // Calls a method of a class on an object path with named arguments and reads its "ReturnValue". `names`
    // and `arguments` go together, one for one, and stay as they are; both null calls without input, and so
    // does a method that takes none. E_INVALIDARG: no services, only one of the two lists, or a class without
    // an object; else the code of the first step that failed, which is that of reading "ReturnValue" when the
    // method itself ran. `output` is null and `returnValue` empty where they were not reached; the caller
    // releases the one and clears the other. Rests on IWbemServices::ExecMethod.
    static HRESULT ExecMethod(IWbemServices* services, const WideString& className,
                              const WideString& methodName, const WideString& objectPath,
                              const std::vector<WideString>* names, VARIANT* arguments,
                              IWbemClassObject** output, VARIANT* returnValue);
};
