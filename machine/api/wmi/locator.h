// Connects to namespaces of WMI.
#pragma once

#include "machine/api/com/object.h"

namespace machine {

class WmiLocator final : public ComObject, public ComInterface<IWbemLocator> {
  public:
    WmiLocator() : ComInterface(*this, IID_IWbemLocator, "IWbemLocator") {}

    // Each connection is a separate object, which the caller releases. WBEM_E_INVALID_NAMESPACE: the PC
    // does not have the namespace; WBEM_E_LOCAL_CREDENTIALS: a user or a password, which only another
    // machine is given; WBEM_E_INVALID_PARAMETER: flags other than that of the longest wait.
    HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR resource, const BSTR user, const BSTR password,
                                            const BSTR locale, LONG flags, const BSTR authority,
                                            IWbemContext* context, IWbemServices** services) override;
};

}  // namespace machine
