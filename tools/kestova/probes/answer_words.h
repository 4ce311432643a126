// Answers of published calls in words. Equal answers have equal words.
#pragma once

#include <string>

#include "base/utf.h"
#include "platform/windows_api.h"

// "TRUE", or "FALSE, ERROR_ACCESS_DENIED" with the last error, which is read first.
std::string TruthWords(BOOL result);
// "5, ", or "0, ERROR_FILE_NOT_FOUND" for a count of 0.
std::string CountWords(DWORD count);
// "S_OK", "VDS_E_OBJECT_NOT_FOUND", "0x80041234".
std::string HresultWords(HRESULT result);
// "ERROR_FILE_NOT_FOUND", "ERROR_SUCCESS".
std::string StatusWords(LSTATUS status);

// "\"C:\\\"", on one line; without quotes "null".
std::string Quoted(WideView text);
std::string Quoted(const WCHAR* text);
// The text in a buffer, up to its terminator; "not terminated" if there is none.
std::string QuotedBuffer(WideView buffer);
// "43 00 3A", or the length and a part of what is long.
std::string HexBytes(const void* bytes, size_t size);
// "zero" for a GUID that is, else "given": for identifiers that every PC makes for itself.
std::string Presence(const GUID& id);
std::string Presence(const void* pointer);
