// A WMI object: a class, a method signature, or an instance of either.
#pragma once

#include "machine/api/com/object.h"
#include "machine/api/wmi/class.h"
#include "platform/wmi_uncalled.h"

namespace machine {

// The flags of all methods are reserved: any value but 0 is WBEM_E_INVALID_PARAMETER.
class WmiObject final : public ComObject, public UncalledObject<ComInterface<IWbemClassObject>> {
  public:
    // A class: its properties are absent, and its methods are available.
    explicit WmiObject(const WmiClass& definition);
    // A method signature, from which instances are created.
    explicit WmiObject(const std::vector<std::string>& names);
    // An instance.
    explicit WmiObject(WmiProperties properties);

    const WmiProperties& Properties() const { return properties_; }

    // A number, text or Boolean by its type, VT_NULL if absent; the caller clears it. WBEM_E_NOT_FOUND:
    // unknown property; `value` is unchanged, as on any failure.
    HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                  LONG* flavor) override;
    // WBEM_E_NOT_FOUND: unknown property; WBEM_E_TYPE_MISMATCH: a type that no property has;
    // WBEM_E_INVALID_PARAMETER: a type other than 0, which is for properties of a new class.
    HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) override;
    // WBEM_E_ILLEGAL_OPERATION: the object is itself an instance. The caller releases the instance.
    HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject** instance) override;
    // Signatures of a method; null if it has no inputs or outputs. WBEM_E_ILLEGAL_OPERATION: the object is
    // not a class; WBEM_E_NOT_FOUND: unknown method. The caller releases both.
    HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** inputs,
                                        IWbemClassObject** outputs) override;

  private:
    WmiObject(const WmiClass* definition, bool spawns, WmiProperties properties);

    const WmiClass* const definition_;
    const bool spawns_;
    WmiProperties properties_;
};

// The method of that name, or null.
const WmiMethod* FindMethod(const WmiClass& definition, std::string_view name);

// Properties with those names, all absent.
WmiProperties AbsentProperties(const std::vector<std::string>& names);

}  // namespace machine
