// Which partition each letter stands for, as a registry has it.
#pragma once

#include <string>

#include "machine/facts/registry_keys.h"
#include "platform/windows_api.h"

// The values of MountedDevices that have a letter's name, in the hive that is mounted at that key of
// HKEY_LOCAL_MACHINE, as the key of that path. Without MountedDevices nothing is added.
void CaptureMountedDevices(const WCHAR* hive, const std::string& path, machine::RegistryKeys& keys);
