// Calls of WMI.
#pragma once

#include <functional>
#include <vector>

#include "base/owners.h"
#include "tools/kestova/probes/probes.h"

// For one instance, in milliseconds: a provider that hangs is not waited for without end.
inline constexpr LONG longestWait = 60'000;
inline constexpr const char* noAnswer = "no answer in 60 s";

// Hands each instance of a list to the action, at most as many as a list may have. What ended the list:
// WBEM_S_FALSE at its end, WBEM_S_TIMEDOUT without an answer, the failure of IEnumWbemClassObject::Next, S_OK
// where it may go on.
HRESULT ForEachInstance(IEnumWbemClassObject& list,
                        const std::function<void(IWbemClassObject& instance)>& action);

// Null if the namespace cannot be reached.
ComPtr<IWbemServices> ProbeConnection(Probes& probes, const WCHAR* space);

using WmiObjects = std::vector<ComPtr<IWbemClassObject>>;

// The instances of a class, each asked for by itself, and once more behind the end.
WmiObjects ProbeInstances(Probes& probes, IWbemServices& services, const WCHAR* className, LONG flags);

// The text of a property; empty if it is none.
WideString ProbeProperty(Probes& probes, const std::string& object, IWbemClassObject& of, const WCHAR* name);

// Null if there is none of that path.
ComPtr<IWbemClassObject> ProbeObject(Probes& probes, IWbemServices& services, const WideString& path);
