// Objects of the emulated component runtime. An object has one identity and one or several interfaces. Each
// interface counts the references to it, in itself and in the ledger under its name ("IVdsDisk"), so a
// reference left, or given back too often, is told together with the interface that it belongs to.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "machine/api/call/call.h"

namespace machine {

class ComObject;

// What all interfaces do alike, whatever their methods.
class ComReferences {
  public:
    // Adds the interface to those of the object.
    ComReferences(ComObject& object, const IID& iid, const char* name, IUnknown* pointer);
    ComReferences(const ComReferences&) = delete;
    ComReferences& operator=(const ComReferences&) = delete;

    // The call "IUnknown::QueryInterface". E_NOINTERFACE, and null: the object has no such interface.
    HRESULT Query(REFIID iid, void** out) const;
    // Both answer the new count. A reference given back too often is a violation and leaves the count at 0.
    ULONG Add();
    ULONG GiveBack();
    // A call through an interface to which no reference is left is a violation.
    void ExpectHeld(std::string_view call) const;

  private:
    ComObject& object_;
    const char* const name_;
    ULONG count_ = 0;
};

// Base of what implements one interface.
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
    // Answers a method under its published name. Outputs are emptied by the caller beforehand.
    template <typename Body>
    HRESULT Call(std::string_view name, std::vector<std::string> arguments, Body body) const {
        references_.ExpectHeld(name);
        return Answer<HRESULT>(name, std::move(arguments), body);
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

    // The interface, with a reference for the caller; null when the object has none of that id.
    IUnknown* Take(REFIID iid);
    // Its published name, or the id as text when the object has no such interface.
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

// All objects of a PC, in the order in which they were made.
using ComObjects = std::vector<std::unique_ptr<ComObject>>;

// Makes an object that lives as long as the PC: nothing is freed under a caller, and what a caller does not
// release shows in the ledger alone.
template <typename Object, typename... Arguments>
Object& MakeObject(EmulatedPc& pc, Arguments&&... arguments) {
    auto object = std::make_unique<Object>(std::forward<Arguments>(arguments)...);
    Object& made = *object;
    pc.State<ComObjects>().push_back(std::move(object));
    return made;
}

// Hands an interface out with a reference for the caller.
template <typename Interface>
HRESULT HandOut(Interface& offered, Interface** out) {
    offered.AddRef();
    *out = &offered;
    return S_OK;
}

// Empties an output before the call is answered; a null address is left for the call to refuse.
template <typename Value>
void Empty(Value* output) {
    if (output != nullptr) *output = Value{};
}

}  // namespace machine
