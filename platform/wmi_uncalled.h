// The methods of WMI that the library does not call. What stands in for an object of WMI, or between it and
// the library, derives from these, and they from its own base: they answer WBEM_E_NOT_SUPPORTED.
#pragma once

#include "platform/windows_api.h"

// Of IWbemServices.
template <typename Base>
class UncalledServices : public Base {
  public:
    using Base::Base;

    HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR, LONG, IWbemContext*, IWbemServices**,
                                            IWbemCallResult**) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink**) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*,
                                            IWbemObjectSink*) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR, LONG, IWbemContext*, IWbemCallResult**) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR, LONG, IWbemContext*,
                                              IEnumWbemClassObject**) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR, LONG, IWbemContext*,
                                                   IWbemObjectSink*) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject*, LONG, IWbemContext*,
                                          IWbemCallResult**) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*,
                                               IWbemObjectSink*) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR, LONG, IWbemContext*, IWbemCallResult**) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR, LONG, IWbemContext*,
                                                  IWbemObjectSink*) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*,
                                                      IWbemObjectSink*) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR, const BSTR, LONG, IWbemContext*,
                                        IEnumWbemClassObject**) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*,
                                                    IEnumWbemClassObject**) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                                         IWbemObjectSink*) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                              IWbemObjectSink*) override {
        return NotSupported();
    }

  private:
    static HRESULT NotSupported() { return static_cast<HRESULT>(WBEM_E_NOT_SUPPORTED); }
};

// Of IEnumWbemClassObject.
template <typename Base>
class UncalledEnumeration : public Base {
  public:
    using Base::Base;

    HRESULT STDMETHODCALLTYPE Reset() override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE NextAsync(ULONG, IWbemObjectSink*) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject**) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE Skip(LONG, ULONG) override { return NotSupported(); }

  private:
    static HRESULT NotSupported() { return static_cast<HRESULT>(WBEM_E_NOT_SUPPORTED); }
};

// Of IWbemClassObject.
template <typename Base>
class UncalledObject : public Base {
  public:
    using Base::Base;

    HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet**) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR, LONG, VARIANT*, SAFEARRAY**) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE Next(LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE EndEnumeration() override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject**) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE GetObjectText(LONG, BSTR*) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG, IWbemClassObject**) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE CompareTo(LONG, IWbemClassObject*) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR, BSTR*) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR, LONG, IWbemClassObject*, IWbemClassObject*) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG) override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE NextMethod(LONG, BSTR*, IWbemClassObject**, IWbemClassObject**) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override { return NotSupported(); }
    HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
        return NotSupported();
    }
    HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR, BSTR*) override { return NotSupported(); }

  private:
    static HRESULT NotSupported() { return static_cast<HRESULT>(WBEM_E_NOT_SUPPORTED); }
};
