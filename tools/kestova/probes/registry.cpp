// The registry values that the library reads.

#include <algorithm>

#include "base/hexadecimal.h"
#include "base/owners.h"
#include "platform/start_options.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/probes.h"

namespace {

constexpr const WCHAR* mountedDevices = TEXT("SYSTEM\\MountedDevices");

struct Key {
    RegistryKey key = {};
    std::string words;
};

Key ProbeKey(Probes& probes, const WCHAR* path, REGSAM access) {
    Key opened{.words = Quoted(path) + ", access " + Hex(access, 1)};
    const LSTATUS status = RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, access, opened.key.Put());
    probes.Add("RegOpenKeyExW", opened.words, StatusWords(status) + ", key " + Presence(opened.key.Get()));
    return opened;
}

struct Room {
    const char* words;
    DWORD bytes;
    bool isGiven = true;  // else the buffer is null, and only the size is asked for
};

// The size of the value; 0 without one.
DWORD ProbeValue(Probes& probes, const Key& opened, const WCHAR* name, const Room& room) {
    std::vector<BYTE> data(room.bytes + 1);
    DWORD type = 0;
    DWORD size = room.bytes;
    const LSTATUS status =
        RegQueryValueExW(opened.key.Get(), name, nullptr, &type, room.isGiven ? data.data() : nullptr, &size);
    std::string answer = StatusWords(status);
    if (status == ERROR_SUCCESS || status == ERROR_MORE_DATA)
        answer += ", type " + std::to_string(type) + ", " + Count(size, "byte");
    const bool isFilled = status == ERROR_SUCCESS && room.isGiven && size <= room.bytes;
    if (isFilled) answer += ": " + HexBytes(data.data(), size);
    probes.Add("RegQueryValueExW", opened.words + ", " + Quoted(name) + ", " + room.words, answer);
    return status == ERROR_SUCCESS ? size : 0;
}

void ProbeValueInAllSizes(Probes& probes, const Key& opened, const WCHAR* name) {
    const DWORD size = ProbeValue(probes, opened, name, {"its size", 0, false});
    const Room rooms[] = {{"into no byte", 0},
                          {"into 1 byte", 1},
                          {"into one byte too few", std::max<DWORD>(size, 1) - 1},
                          {"into its size", size},
                          {"into 1000 bytes", 1000}};
    for (const Room& room : rooms)
        ProbeValue(probes, opened, name, room);
}

}  // namespace

void ProbeRegistry(Probes& probes) {
    const Key control = ProbeKey(probes, startOptionsKey, KEY_READ);
    if (control.key) {
        ProbeValueInAllSizes(probes, control, startOptionsValue);
        ProbeValueInAllSizes(probes, control, TEXT("no such value"));
    }
    const Key devices = ProbeKey(probes, mountedDevices, KEY_READ);
    if (devices.key) {
        for (const WCHAR letter : WideView(allLetters))
            ProbeValueInAllSizes(probes, devices,
                                 (TEXT("\\DosDevices\\") + WideString(1, letter) + TEXT(":")).c_str());
    }
    ProbeKey(probes, TEXT("SYSTEM\\MountedDevices\\"), KEY_READ);
    ProbeKey(probes, TEXT("system\\mounteddevices"), KEY_QUERY_VALUE);
    ProbeKey(probes, TEXT("SYSTEM\\no such key"), KEY_READ);
    ProbeKey(probes, TEXT("\\SYSTEM"), KEY_READ);
    ProbeKey(probes, TEXT(""), KEY_READ);
    const Key unreadable = ProbeKey(probes, mountedDevices, KEY_ENUMERATE_SUB_KEYS);
    if (unreadable.key) ProbeValue(probes, unreadable, TEXT("\\DosDevices\\C:"), {"its size", 0, false});
}
