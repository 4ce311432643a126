// Partition types in words.
#pragma once

#include <string>

#include "platform/windows_api.h"

// "hidden recovery (0x27)"; "unknown (0xAB)" for an ID that the library does not know.
std::string MbrTypeWords(BYTE type);

// "EFI system"; "unknown (GUID)" for a type that the library does not know.
std::string GptTypeWords(const GUID& type);
