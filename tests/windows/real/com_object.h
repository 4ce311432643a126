// A COM object as any compiler lays it out: a table of functions, each in its published slot. Only the
// methods that the library calls are there; every other slot answers E_NOTIMPL.
#pragma once

#include <array>
#include <utility>
#include <vector>

#include "platform/vds.h"

using VirtualTable = std::array<const void*, 32>;

// One interface of an object.
struct Face {
    const GUID& id;
    const VirtualTable& table;
};

template <typename Data>
struct ComObject {
    const void* const* table;  // first, where a caller looks for it
    const std::vector<Face>* faces;
    Data data;
    ULONG references = 1;
};

// Puts a new object's first face, or the asked one, to where the caller wants it, who releases it.
template <typename Data, typename Interface>
HRESULT Hand(const std::vector<Face>& faces, Data data, Interface** out, size_t face = 0) {
    auto* const object = new ComObject<Data>{faces[face].table.data(), &faces, std::move(data)};
    *out = reinterpret_cast<Interface*>(object);
    return S_OK;
}

template <typename Data>
HRESULT QueryInterface(ComObject<Data>* self, REFIID id, IUnknown** out) {
    const std::vector<Face>& faces = *self->faces;
    for (size_t face = 0; face < faces.size(); face++)
        if (IsEqualGUID(id, faces[face].id) || IsEqualGUID(id, IID_IUnknown))
            return Hand(faces, self->data, out, face);
    *out = nullptr;
    return E_NOINTERFACE;
}

template <typename Data>
ULONG AddRef(ComObject<Data>* self) {
    return ++self->references;
}

template <typename Data>
ULONG Release(ComObject<Data>* self) {
    const ULONG left = --self->references;
    if (left == 0) delete self;
    return left;
}

inline HRESULT NotImplemented() {
    return E_NOTIMPL;
}

// For objects that know nothing of their own.
struct Nothing {};

const void* Address(auto* function) {
    return reinterpret_cast<const void*>(function);
}

struct Method {
    size_t slot;
    const void* function;
};

template <typename Data>
VirtualTable TableOf(const std::vector<Method>& methods) {
    VirtualTable table;
    table.fill(Address(NotImplemented));
    table[0] = Address(QueryInterface<Data>);
    table[1] = Address(AddRef<Data>);
    table[2] = Address(Release<Data>);
    for (const Method& method : methods)
        table[method.slot] = method.function;
    return table;
}
