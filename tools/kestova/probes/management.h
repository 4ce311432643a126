// Calls of WMI.
#pragma once

#include <initializer_list>
#include <vector>

#include "base/owners.h"
#include "tools/kestova/probes/probes.h"

// Null if the namespace cannot be reached.
ComPtr<IWbemServices> ProbeConnection(Probes& probes, const WCHAR* space);

using WmiObjects = std::vector<ComPtr<IWbemClassObject>>;

// The instances of a class, each asked for by itself, and once more behind the end.
WmiObjects ProbeInstances(Probes& probes, IWbemServices& services, const WCHAR* className, LONG flags);

// The text of a property; empty if it is none.
WideString ProbeProperty(Probes& probes, const std::string& object, IWbemClassObject& of, const WCHAR* name);

// Null if there is none of that path.
ComPtr<IWbemClassObject> ProbeObject(Probes& probes, IWbemServices& services, const WideString& path);
