// Objects of the emulated component runtime. An object has one identity and one or more interfaces. Each
// interface counts its own references and reports them to the ledger under its name ("IVdsDisk"), so that a
// leak or an extra release is reported with the interface concerned.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "machine/api/call/call.h"

namespace machine {

class ComObject;

// The IUnknown part that all interfaces share.
class ComReferences {
  public:
    // Registers the interface with the object.
    ComReferences(ComObject& object, const IID& iid, const char* name, IUnknown* pointer);
    ComReferences(const ComReferences&) = delete;
    ComReferences& operator=(const ComReferences&) = delete;

    // The call "IUnknown::QueryInterface". E_NOINTERFACE, with a null output, if the object does not
    // implement the interface.
    HRESULT Query(REFIID iid, void** out) const;
    // Both return the new count. Releasing a reference that is not held is a violation and leaves the count
    // at 0.
    ULONG Add();
    ULONG GiveBack();
    // Calling through an interface without holding a reference is a violation.
    void ExpectHeld(std::string_view call) const;

  private:
    ComObject& object_;
    const char* const name_;
    ULONG count_ = 0;
};

// Base class for the implementation of one interface.
template <typename Interface>
class ComInterface : public Interface {
  public:
    ComInterface(ComObject& object, const IID& iid, const char* name)
        : references_(object, iid, name, this) {}
    virtual ~ComInterface() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        return references_.Query(iid, out);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return references_.Add(); }
    ULONG STDMETHODCALLTYPE Release() override { return references_.GiveBack(); }

  protected:
    // Answers a method under its published name. The caller clears the outputs first.
    template <typename Body>
    HRESULT Call(CallName call, std::vector<std::string> arguments, Body body, ULONG* count = nullptr) const {
        references_.ExpectHeld(call.Info().name);
        return Answer<HRESULT>(call, std::move(arguments), body, count);
    }

  private:
    ComReferences references_;
};

class ComObject {
  public:
    ComObject() : unknown_(*this, IID_IUnknown, "IUnknown") {}
    virtual ~ComObject() = default;
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    // The interface with a reference for the caller, or null if the object does not implement it.
    IUnknown* Take(REFIID iid);
    // The published name, or the id as text if the object does not implement the interface.
    std::string InterfaceName(REFIID iid) const;

  private:
    friend class ComReferences;

    struct Offer {
        GUID iid;
        const char* name;
        IUnknown* pointer;
    };
    const Offer* Find(REFIID iid) const;

    std::vector<Offer> offers_;
    ComInterface<IUnknown> unknown_;  // the identity
};

// All objects of a PC in the order of their creation.
using ComObjects = std::vector<std::unique_ptr<ComObject>>;

// Creates an object that lives as long as the PC: it is never destroyed under a caller, and a missing
// release shows only in the ledger.
template <typename Object, typename... Arguments>
Object& MakeObject(EmulatedPc& pc, Arguments&&... arguments) {
    auto object = std::make_unique<Object>(std::forward<Arguments>(arguments)...);
    Object& made = *object;
    pc.State<ComObjects>().push_back(std::move(object));
    return made;
}

// Returns an interface with a reference for the caller.
template <typename Interface>
HRESULT HandOut(Interface& offered, Interface** out) {
    offered.AddRef();
    *out = &offered;
    return S_OK;
}

// Clears an output before the call is answered. A null pointer is left for the call to reject.
template <typename Value>
void Empty(Value* output) {
    if (output != nullptr) *output = Value{};
}

}  // namespace machine
