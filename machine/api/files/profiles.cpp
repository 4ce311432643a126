// The initialisation-file calls of the emulated PC.

#include <algorithm>

#include "machine/api/call/outcome.h"
#include "machine/api/files/profile_text.h"
#include "machine/api/files/redirection.h"

using namespace machine;

namespace {

// A file name without a path refers to the Windows directory; a null name to win.ini.
std::string ProfilePath(const EmulatedPc& pc, LPCWSTR file) {
    const std::string name = file != nullptr ? ToUtf8(file) : "win.ini";
    return name.find_first_of(":\\/") != std::string::npos ? name
                                                           : pc.facts.system.windowsDirectory + "\\" + name;
}

// A longer file is refused: a search asks for its keys one by one, and each call reads the file.
uint32_t ReadProfile(VolumeFiles files, const std::string& path, std::string& bytes) {
    constexpr size_t longest = size_t{64} << 10;
    const uint32_t error = files.Read(path, bytes);
    if (error != ERROR_SUCCESS || bytes.size() <= longest) return error;
    bytes.clear();
    return ERROR_FILE_TOO_LARGE;
}

// The text that was read last, since the next call often reads it again.
struct LastProfile {
    std::string bytes;
    bool skipsUtf8Mark = false;
    ProfileText text{{}};
};

const ProfileText& Parsed(EmulatedPc& pc, std::string bytes) {
    LastProfile& last = pc.State<LastProfile>();
    const bool skips = pc.facts.switches.profilesSkipUtf8Mark;
    if (last.bytes != bytes || last.skipsUtf8Mark != skips) {
        last.text = ProfileText(bytes, skips);
        last.bytes = std::move(bytes);
        last.skipsUtf8Mark = skips;
    }
    return last.text;
}

// Each name with its terminator, then a final terminator.
WideString AsList(const std::vector<WideString>& names) {
    WideString list;
    for (const WideString& name : names)
        list += name + TEXT('\0');
    return list;
}

// Copies what fits before `terminators` terminators; returns the count without them.
DWORD PutCut(const WideString& text, DWORD terminators, LPWSTR buffer, DWORD size) {
    if (buffer == nullptr || size == 0) return 0;
    if (size < terminators) {
        buffer[0] = TEXT('\0');
        return 0;
    }
    const size_t length = std::min<size_t>(text.size(), size - terminators);
    std::copy_n(text.c_str(), length, buffer);
    std::fill_n(buffer + length, terminators, TEXT('\0'));
    return static_cast<DWORD>(length);
}

// A complete list fills the buffer up to its last terminator; a truncated one leaves room for two.
DWORD PutList(const WideString& list, LPWSTR buffer, DWORD size) {
    return PutCut(list, list.size() < size ? 1 : 2, buffer, size);
}

WideString Default(LPCWSTR text) {
    WideString trimmed = text != nullptr ? text : TEXT("");
    while (!trimmed.empty() && trimmed.back() == TEXT(' '))
        trimmed.pop_back();
    return trimmed;
}

uint32_t Change(EmulatedPc& pc, LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file) {
    if (section == nullptr) return ERROR_INVALID_PARAMETER;
    VolumeFiles files = FilesOf(pc);
    const std::string path = ProfilePath(pc, file);
    std::string bytes;
    const uint32_t error = ReadProfile(files, path, bytes);
    if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND) return error;
    ProfileText profile(bytes, pc.facts.switches.profilesSkipUtf8Mark);
    if (key == nullptr) {
        profile.RemoveSection(section);
    } else if (value == nullptr) {
        profile.RemoveKey(section, key);
    } else {
        profile.Set(section, key, value);
    }
    const std::string changed = profile.Bytes();
    const bool nothingToRemove = changed == bytes && (key == nullptr || value == nullptr);
    return nothingToRemove ? uint32_t{ERROR_SUCCESS} : files.Write(path, changed);
}

// The headers disagree on whether the length is signed.
using Length = decltype(GetPrivateProfileStringW(nullptr, nullptr, nullptr, nullptr, 0, nullptr));

}  // namespace

// The number of characters copied: the value, or the default without trailing blanks, truncated to size - 1.
// Without a section, the names of all sections; without a key, the names of the section's keys; each with
// its terminator, truncated to size - 2. Last error: 2, 223 for a file of more than 64 KiB, or another that
// prevented reading the file.
extern "C" Length WINAPI GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultValue,
                                                  LPWSTR buffer, DWORD size, LPCWSTR file) {
    if (buffer != nullptr && size > 0) buffer[0] = TEXT('\0');
    std::vector<std::string> arguments = {ToUtf8(section), ToUtf8(key), ToUtf8(defaultValue),
                                          std::to_string(size), ToUtf8(file)};
    return Answer<Length>("GetPrivateProfileStringW", std::move(arguments), [&](EmulatedPc& pc) {
        std::string bytes;
        const uint32_t error = ReadProfile(FilesOf(pc), ProfilePath(pc, file), bytes);
        if (error != ERROR_SUCCESS) pc.lastError = error;
        const ProfileText& profile = Parsed(pc, std::move(bytes));
        DWORD length = 0;
        if (section == nullptr) {
            length = PutList(AsList(profile.SectionNames()), buffer, size);
        } else if (key == nullptr) {
            length = PutList(AsList(profile.KeyNames(section)), buffer, size);
        } else {
            length = PutCut(profile.Value(section, key).value_or(Default(defaultValue)), 1, buffer, size);
        }
        return static_cast<Length>(length);
    });
}

// Writes the value; a null value removes the key, a null key the section. Creates the file, but no folder.
// Error 3 for a missing folder or drive, 19 for a write-protected medium, 87 without a section, 223 for a
// file of more than 64 KiB, and the other errors of VolumeFiles. Without section, key and value, FALSE with
// the last error unchanged: there is no cache to flush.
extern "C" BOOL WINAPI WritePrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file) {
    std::vector<std::string> arguments = {ToUtf8(section), ToUtf8(key), ToUtf8(value), ToUtf8(file)};
    return Answer<BOOL>("WritePrivateProfileStringW", std::move(arguments), [&](EmulatedPc& pc) -> BOOL {
        if (section == nullptr && key == nullptr && value == nullptr) return FALSE;
        return Outcome(pc, Change(pc, section, key, value, file));
    });
}
