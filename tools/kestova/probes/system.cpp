// The running system: its folders, its firmware, its word size, and the memory that it lends.

#include "base/hexadecimal.h"
#include "base/owners.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/probes.h"

namespace {

void ProbeWindowsFolder(Probes& probes, UINT size) {
    WideString buffer(size + 1, TEXT('\0'));
    const UINT length = GetWindowsDirectoryW(size == 0 ? nullptr : buffer.data(), size);
    probes.Add("GetWindowsDirectoryW", Count(size, "unit"),
               std::to_string(length) + (length < size ? ", " + QuotedBuffer(buffer) : ""));
}

void ProbeProgramPath(Probes& probes, DWORD size) {
    WideString buffer(size + 1, TEXT('\0'));
    const DWORD length = GetModuleFileNameW(nullptr, buffer.data(), size);
    const DWORD error = length == size ? GetLastError() : ERROR_SUCCESS;
    probes.Add("GetModuleFileNameW", "null, " + Count(size, "unit"),
               std::to_string(length) + ", " + StatusWords(static_cast<LSTATUS>(error)) + ", " +
                   QuotedBuffer(buffer));
}

void ProbeFirmware(Probes& probes, const WCHAR* name, const WCHAR* space, DWORD size) {
    char value[1000] = {};
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetFirmwareEnvironmentVariableW(name, space, size == 0 ? nullptr : value, size);
    const std::string answer = CountWords(length);
    probes.Add("GetFirmwareEnvironmentVariableW",
               Quoted(name) + ", " + Quoted(space) + ", " + Count(size, "byte"), answer);
}

void ProbeMemory(Probes& probes, UINT flags, SIZE_T size) {
    const GlobalBuffer<BYTE> block(static_cast<BYTE*>(GlobalAlloc(flags, size)));
    const std::string answer = block ? "given" : TruthWords(FALSE);
    probes.Add("GlobalAlloc", Hex(flags, 1) + ", " + Count(size, "byte"), answer);
}

}  // namespace

void ProbeSystem(Probes& probes) {
    for (const UINT size : {0U, 1U, 3U, 10U, 11U, UINT{MAX_PATH}})
        ProbeWindowsFolder(probes, size);
    for (const DWORD size : {1U, 5U, 1000U})
        ProbeProgramPath(probes, size);
    constexpr const WCHAR* noSpace = TEXT("{00000000-0000-0000-0000-000000000000}");
    for (const DWORD size : {0U, 1U, 1000U})
        ProbeFirmware(probes, TEXT(""), noSpace, size);
    ProbeFirmware(probes, TEXT("no such variable"), noSpace, 1000);
    ProbeFirmware(probes, TEXT(""), TEXT("no GUID"), 1000);
    BOOL isWow64 = FALSE;
    const BOOL asked = IsWow64Process(GetCurrentProcess(), &isWow64);
    const std::string answer = TruthWords(asked);
    probes.Add("IsWow64Process", "this process", answer + (isWow64 ? ", yes" : ", no"));
    for (const SIZE_T size : {SIZE_T{0}, SIZE_T{1}, SIZE_T{1000}})
        ProbeMemory(probes, GMEM_ZEROINIT, size);
}
