// RAII owners of platform resources; each releases its resource once, with the matching call.
#pragma once

#include <utility>

#include "base/wide_string.h"
#include "platform/windows_api.h"

// Owns one resource, or none. `Resource` defines its type, the value for none, and its release.
template <typename Resource>
class Owner {
  public:
    using Type = typename Resource::Type;

    Owner() = default;
    explicit Owner(Type value) : value_(value) {}
    ~Owner() { Reset(); }
    Owner(Owner&& other) noexcept : value_(other.Detach()) {}
    Owner& operator=(Owner&& other) noexcept {
        if (this != &other) Reset(other.Detach());
        return *this;
    }
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;

    explicit operator bool() const { return value_ != Resource::None(); }
    Type Get() const { return value_; }
    Type operator->() const { return value_; }
    // The address at which a call stores a new resource; the present one is released first.
    Type* Put() {
        Reset();
        return &value_;
    }
    // Passes ownership to the caller.
    Type Detach() { return std::exchange(value_, Resource::None()); }
    // Releases the present resource and owns the value instead.
    void Reset(Type value = Resource::None()) {
        const Type released = std::exchange(value_, value);
        if (released != Resource::None()) Resource::Release(released);
    }

  private:
    Type value_ = Resource::None();
};

template <typename Interface>
struct ComReference {
    using Type = Interface*;
    static Type None() { return nullptr; }
    static void Release(Type value) { value->Release(); }
};

template <typename Content>
struct GlobalMemory {
    using Type = Content*;
    static Type None() { return nullptr; }
    static void Release(Type value) { GlobalFree(value); }
};

struct AutomationString {
    using Type = BSTR;
    static Type None() { return nullptr; }
    static void Release(Type value) { SysFreeString(value); }
};

struct OpenedFile {
    using Type = HANDLE;
    static Type None() { return INVALID_HANDLE_VALUE; }
    static void Release(Type value) { CloseHandle(value); }
};

struct StartedProcess {
    using Type = HANDLE;
    static Type None() { return nullptr; }
    static void Release(Type value) { CloseHandle(value); }
};

struct OpenedKey {
    using Type = HKEY;
    static Type None() { return nullptr; }
    static void Release(Type value) { RegCloseKey(value); }
};

struct DeviceInfoList {
    using Type = HDEVINFO;
    static Type None() { return INVALID_HANDLE_VALUE; }
    static void Release(Type value) { SetupDiDestroyDeviceInfoList(value); }
};

template <typename Interface>
using ComPtr = Owner<ComReference<Interface>>;
template <typename Content>
using GlobalBuffer = Owner<GlobalMemory<Content>>;  // fixed memory of GlobalAlloc
using Bstr = Owner<AutomationString>;
using FileHandle = Owner<OpenedFile>;
using ProcessHandle = Owner<StartedProcess>;
using RegistryKey = Owner<OpenedKey>;
using DeviceInfoSet = Owner<DeviceInfoList>;

// The result of a call that returns an interface: E_INVALIDARG for a success without one.
inline HRESULT WithInterface(HRESULT result, const void* interfacePointer) {
    return SUCCEEDED(result) && interfacePointer == nullptr ? E_INVALIDARG : result;
}

// A VARIANT that a call fills; cleared at the end of its scope.
class Variant {
  public:
    Variant() { VariantInit(&value_); }
    ~Variant() { VariantClear(&value_); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;

    // The address at which a call stores a value; the present one is cleared first.
    VARIANT* Put() {
        VariantClear(&value_);
        return &value_;
    }
    const VARIANT& Get() const { return value_; }
    // The text of a string; empty for every other type, above all VT_NULL.
    WideString Text() const {
        const bool isText = V_VT(&value_) == VT_BSTR && V_BSTR(&value_) != nullptr;
        return isText ? WideString(V_BSTR(&value_)) : WideString();
    }
    // The value of a 32-bit integer; 0 for every other type.
    LONG Number() const { return V_VT(&value_) == VT_I4 ? V_I4(&value_) : 0; }

  private:
    VARIANT value_;
};
