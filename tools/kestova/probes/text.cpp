// Texts in code pages, and texts and values of COM.

#include "tools/kestova/common/text.h"
#include "base/owners.h"
#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/probes.h"

namespace {

const char* PageWords(UINT codePage) {
    return codePage == CP_ACP ? "CP_ACP" : "CP_OEMCP";
}

void ProbeConversion(Probes& probes, UINT codePage, const WCHAR* text, INT length, INT capacity) {
    std::string bytes(64, '\0');
    const INT size = WideCharToMultiByte(codePage, 0, text, length, capacity == 0 ? nullptr : bytes.data(),
                                         capacity, nullptr, nullptr);
    std::string answer = CountWords(static_cast<DWORD>(size));
    if (size > 0 && size <= capacity) answer += ": " + HexBytes(bytes.data(), static_cast<size_t>(size));
    probes.Add("WideCharToMultiByte",
               std::string(PageWords(codePage)) + ", " + Quoted(text) + ", length " + std::to_string(length) +
                   ", into " + Count(static_cast<size_t>(capacity), "byte"),
               answer);
}

void ProbeString(Probes& probes, const WCHAR* text) {
    const Bstr string(SysAllocString(text));
    probes.Add("SysAllocString", Quoted(text), string ? Quoted(string.Get()) : "null");
    const UINT length = SysStringLen(string.Get());
    probes.Add("SysStringLen", Quoted(text), std::to_string(length));
}

void ProbeClearing(Probes& probes, VARTYPE type, const char* words) {
    VARIANT value;
    VariantInit(&value);
    V_VT(&value) = type;
    const HRESULT result = VariantClear(&value);
    probes.Add("VariantClear", words, HresultWords(result) + ", type " + std::to_string(V_VT(&value)));
}

}  // namespace

void ProbeText(Probes& probes) {
    constexpr const WCHAR* texts[] = {TEXT(""), TEXT("Load"), TEXT("\u00E4\u00DF"), TEXT("\u20AC"),
                                      TEXT("\u65E5")};
    for (const UINT codePage : {UINT{CP_ACP}, UINT{CP_OEMCP}}) {
        for (const WCHAR* const text : texts) {
            for (const INT capacity : {0, 1, 64})
                ProbeConversion(probes, codePage, text, -1, capacity);
        }
        ProbeConversion(probes, codePage, TEXT("Load"), 2, 64);
        ProbeConversion(probes, codePage, TEXT("Load"), 0, 64);
        ProbeConversion(probes, codePage, nullptr, -1, 64);
    }
    for (const WCHAR* const text : {TEXT(""), TEXT("Win32_DiskDrive"), static_cast<const WCHAR*>(nullptr)})
        ProbeString(probes, text);
    ProbeClearing(probes, VT_EMPTY, "VT_EMPTY");
    ProbeClearing(probes, VT_NULL, "VT_NULL");
    ProbeClearing(probes, VT_I4, "VT_I4");
    ProbeClearing(probes, VT_BOOL, "VT_BOOL");
    ProbeClearing(probes, VT_BSTR, "VT_BSTR of null");
    ProbeClearing(probes, VT_UNKNOWN, "VT_UNKNOWN of null");
}
