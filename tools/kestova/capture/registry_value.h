// Values of the registry.
#pragma once

#include <optional>
#include <string>

#include "machine/facts/registry_keys.h"
#include "platform/windows_api.h"

// The value with the bytes as the registry has them; nothing if it cannot be read.
std::optional<machine::RegistryValue> ReadValue(HKEY key, const WCHAR* name);

// A text of the registry as UTF-8, without its terminator.
std::string TextOf(const machine::RegistryValue& value);
