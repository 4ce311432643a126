// A connection to a WMI namespace, and its enumerations of instances.
#pragma once

#include "machine/api/com/object.h"
#include "machine/api/wmi/class.h"
#include "machine/api/wmi/path.h"
#include "platform/wmi_uncalled.h"

namespace machine {

class WmiServices final : public ComObject, public UncalledServices<ComInterface<IWbemServices>> {
  public:
    explicit WmiServices(std::string space)
        : UncalledServices(*this, IID_IWbemServices, "IWbemServices"), space_(std::move(space)) {}

    // A class by its name, or an instance by its path; the caller releases it. WBEM_E_INVALID_OBJECT_PATH:
    // malformed, or of another namespace; WBEM_E_NOT_FOUND: unknown class or instance;
    // WBEM_E_INVALID_PARAMETER: flags, none of which are supported.
    HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG flags, IWbemContext* context,
                                        IWbemClassObject** object, IWbemCallResult** callResult) override;
    // All current instances, whatever the flags; the caller releases the enumeration. WBEM_E_INVALID_CLASS:
    // unknown class, unless the PC's switch leaves that to Next, as flags that ask for an immediate return
    // allow.
    HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR className, LONG flags, IWbemContext* context,
                                                 IEnumWbemClassObject** enumerator) override;
    // Path errors as for GetObject; WBEM_E_INVALID_METHOD: unknown method; WBEM_E_INVALID_PARAMETER: flags,
    // or `inputs` that are not a WMI object; otherwise the result of the method itself. The caller releases
    // the outputs.
    HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags,
                                         IWbemContext* context, IWbemClassObject* inputs,
                                         IWbemClassObject** outputs, IWbemCallResult** callResult) override;

  private:
    const std::string space_;
};

class WmiEnumerator final : public ComObject, public UncalledEnumeration<ComInterface<IEnumWbemClassObject>> {
  public:
    explicit WmiEnumerator(std::vector<WmiProperties> instances)
        : UncalledEnumeration(*this, IID_IEnumWbemClassObject, "IEnumWbemClassObject"),
          instances_(std::move(instances)) {}
    // One of which every Next fails with that code.
    explicit WmiEnumerator(HRESULT failure)
        : UncalledEnumeration(*this, IID_IEnumWbemClassObject, "IEnumWbemClassObject"), failure_(failure) {}

    // WBEM_S_FALSE: fewer objects remained than requested, at the end none. Never waits, whatever the
    // timeout. The caller releases those returned.
    HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                   ULONG* returned) override;

  private:
    std::vector<WmiProperties> instances_;
    HRESULT failure_ = S_OK;
    size_t position_ = 0;
};

}  // namespace machine
