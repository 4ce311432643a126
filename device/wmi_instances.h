// Enumeration of the instances of a WMI class.
#pragma once

#include <initializer_list>

#include "base/owners.h"

// A property to read, and the text that receives it: empty for VT_NULL.
struct TextProperty {
    const WCHAR* name;
    WideString& text;
};

// Opens an enumeration of a class. The code of IWbemServices::CreateInstanceEnum; E_INVALIDARG for a success
// without an enumerator.
HRESULT OpenInstances(IWbemServices* services, const Bstr& className,
                      ComPtr<IEnumWbemClassObject>& instances);

// Reads the properties of the next instance, in the given order. Returns the status of the last call, at the
// end the positive WBEM_S_FALSE; `complete` is whether there was an instance and every property was read.
HRESULT ReadNext(IEnumWbemClassObject* instances, std::initializer_list<TextProperty> properties,
                 bool& complete);
