// The instances of a WMI class, one after the other.
#pragma once

#include <initializer_list>

#include "base/owners.h"

// A property to read, and where its text goes: empty for VT_NULL.
struct TextProperty {
    const WCHAR* name;
    WideString& text;
};

// Begins to enumerate a class. A failure is the code of IWbemServices::CreateInstanceEnum; E_INVALIDARG for a
// success that came without an enumerator.
HRESULT OpenInstances(IWbemServices* services, const Bstr& className,
                      ComPtr<IEnumWbemClassObject>& instances);

// Reads the properties of the next instance, in the order given. Answers the status of the last call, at the
// end the positive WBEM_S_FALSE; `complete` tells whether an instance came and every property was read.
HRESULT ReadNext(IEnumWbemClassObject* instances, std::initializer_list<TextProperty> properties,
                 bool& complete);
