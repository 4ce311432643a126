// INI files: the one beside the host application, and the one on a recovery partition.

#include <optional>

#include "tools/kestova/common/text.h"
#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/probes.h"

namespace {

// Null texts are asked as null.
struct Question {
    const WCHAR* section;
    const WCHAR* key;
    const WCHAR* standard;
};

constexpr Question questions[] = {
    {TEXT("Exclude"), TEXT("DeviceID1"), TEXT("(INI READ ERROR)")},
    {TEXT("Exclude"), TEXT("DeviceID2"), TEXT("(INI READ ERROR)")},
    {TEXT("OrderIndex"), TEXT("DeviceID1"), TEXT("(INI READ ERROR)")},
    {TEXT("OrderIndex"), TEXT("DeviceID2"), TEXT("(INI READ ERROR)")},
    {TEXT("orderindex"), TEXT("DEVICEID1"), TEXT("no")},
    {TEXT("System"), TEXT("Active"), TEXT("0")},
    {TEXT("no such section"), TEXT("DeviceID1"), TEXT("no  ")},
    {TEXT("Exclude"), TEXT("no such key"), TEXT("")},
    {TEXT("Exclude"), TEXT("no such key"), nullptr},
    {TEXT("Exclude"), nullptr, TEXT("no keys")},
    {nullptr, nullptr, TEXT("no sections")},
    {nullptr, TEXT("DeviceID1"), TEXT("no sections")},
};

void Ask(Probes& probes, const Question& question, const WideString& file, const std::string& name,
         DWORD size) {
    WideString buffer(size + 1, TEXT('\0'));
    SetLastError(ERROR_SUCCESS);
    // The headers disagree on whether the length is signed.
    const DWORD length = static_cast<DWORD>(GetPrivateProfileStringW(
        question.section, question.key, question.standard, buffer.data(), size, file.c_str()));
    const DWORD error = GetLastError();
    probes.Add("GetPrivateProfileStringW",
               Quoted(question.section) + ", " + Quoted(question.key) + ", " + Quoted(question.standard) +
                   ", " + name + ", " + Count(size, "unit"),
               std::to_string(length) + ", " + Quoted(WideView(buffer).substr(0, std::min(length, size))) +
                   ", " + StatusWords(static_cast<LSTATUS>(error)));
}

// The file as the library finds it.
WideString BesideTheHost() {
    WCHAR path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    PathRemoveFileSpecW(path);
    PathAppendW(path, TEXT("IDE.INI"));
    return path;
}

}  // namespace

void ProbeProfiles(Probes& probes) {
    constexpr DWORD usual = 260;
    for (const Question& question : questions) {
        for (const DWORD size : {DWORD{0}, DWORD{1}, DWORD{2}, DWORD{3}, DWORD{8}, usual})
            Ask(probes, question, BesideTheHost(), "IDE.INI", size);
    }
    for (const WCHAR letter : LettersInUse()) {
        const WideString file = WideString(1, letter) + TEXT(":\\SystemVolume.ini");
        Ask(probes, {TEXT("System"), TEXT("Active"), TEXT("")}, file, Quoted(file), usual);
    }
    const WideString missing = WideString(1, WindowsLetter()) + TEXT(":\\no such folder\\no such file.ini");
    Ask(probes, questions[0], missing, Quoted(missing), usual);
}
