#include "machine/api/com/object.h"

#include <algorithm>

namespace machine {

namespace {

// The name of the call that the journal has last.
std::string LastCall() {
    const std::vector<JournalEntry>& entries = EmulatedPc::Current().journal.Entries();
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
        if (const CallRecord* const record = std::get_if<CallRecord>(&*entry)) return record->call;
    }
    return {};
}

}  // namespace

ComReferences::ComReferences(ComObject& object, const IID& iid, const char* name, IUnknown* pointer)
    : object_(object), name_(name) {
    object.offers_.push_back({iid, name, pointer});
}

HRESULT ComReferences::Query(REFIID iid, void** out) const {
    Empty(out);
    ExpectHeld("IUnknown::QueryInterface");
    return Answer<HRESULT>("IUnknown::QueryInterface", {object_.InterfaceName(iid)}, [&](EmulatedPc&) {
        if (out == nullptr) return E_POINTER;
        *out = object_.Take(iid);
        return *out != nullptr ? S_OK : E_NOINTERFACE;
    });
}

ULONG ComReferences::Add() {
    const Turn turn;
    EmulatedPc::Current().ledger.Take(name_);
    return ++count_;
}

ULONG ComReferences::GiveBack() {
    const Turn turn;
    EmulatedPc& pc = EmulatedPc::Current();
    if (count_ == 0) {
        pc.ledger.Violation(std::string(name_) + " released too often");
        return 0;
    }
    pc.ledger.GiveBack(name_);
    NoteUnshown("IUnknown::Release", [&] { return Arguments{name_, LastCall()}; });
    return --count_;
}

void ComReferences::ExpectHeld(std::string_view call) const {
    const Turn turn;
    if (count_ > 0) return;
    EmulatedPc::Current().ledger.Violation(std::string(call) + " called through a released " + name_);
}

IUnknown* ComObject::Take(REFIID iid) {
    const Offer* const offer = Find(iid);
    if (offer == nullptr) return nullptr;
    offer->pointer->AddRef();
    return offer->pointer;
}

std::string ComObject::InterfaceName(REFIID iid) const {
    const Offer* const offer = Find(iid);
    return offer != nullptr ? offer->name : GuidText(iid);
}

const ComObject::Offer* ComObject::Find(REFIID iid) const {
    const auto found = std::find_if(offers_.begin(), offers_.end(),
                                    [&](const Offer& offer) { return IsEqualGUID(offer.iid, iid); });
    return found != offers_.end() ? &*found : nullptr;
}

}  // namespace machine
