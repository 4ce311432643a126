#include "machine/api/com/memory.h"

#include <cstring>

#include "machine/api/call/call.h"

using namespace machine;

namespace {

// A system string has its length in bytes in front of the first unit; the block begins a little earlier, so
// that the units stay aligned.
constexpr size_t lengthSize = sizeof(UINT);
constexpr size_t headerSize = 8;

char* BlockOf(BSTR string) {
    return reinterpret_cast<char*>(string) - headerSize;
}

}  // namespace

namespace machine {

LPWSTR LendText(EmulatedPc& pc, const std::string& kind, std::string_view text) {
    const WideString wide = ToWide(text);
    WCHAR* const copy = LendRecords<WCHAR>(pc, kind, wide.size() + 1);
    std::memcpy(copy, wide.data(), wide.size() * sizeof(WCHAR));
    return copy;
}

BSTR LendSystemString(EmulatedPc& pc, WideView text) {
    const UINT length = static_cast<UINT>(text.size() * sizeof(WCHAR));
    char* const block =
        static_cast<char*>(pc.ledger.Lend("BSTR", "BSTR", headerSize + length + sizeof(WCHAR)));
    std::memcpy(block + headerSize - lengthSize, &length, lengthSize);
    std::memcpy(block + headerSize, text.data(), length);
    return reinterpret_cast<BSTR>(block + headerSize);
}

}  // namespace machine

// Task memory, in the ledger as "CoTaskMem". It cannot fail.
extern "C" LPVOID WINAPI CoTaskMemAlloc(SIZE_T size) {
    return EmulatedPc::Current().ledger.Lend("CoTaskMem", "CoTaskMem", size);
}

// Takes back task memory of any kind; null is fine.
extern "C" void WINAPI CoTaskMemFree(LPVOID memory) {
    EmulatedPc::Current().ledger.Return("CoTaskMem", memory);
}

// A copy of the text up to its terminator. Null: the text was null, or there is no memory. The caller frees
// it with SysFreeString.
extern "C" BSTR WINAPI SysAllocString(const OLECHAR* text) {
    return Answer<BSTR>("SysAllocString", {ToUtf8(text)}, [&](EmulatedPc& pc) {
        return text != nullptr ? LendSystemString(pc, text) : nullptr;
    });
}

// Null is fine.
extern "C" void WINAPI SysFreeString(BSTR string) {
    if (string != nullptr) EmulatedPc::Current().ledger.Return("BSTR", BlockOf(string));
}

// In units, without the terminator; 0 for null.
extern "C" UINT WINAPI SysStringLen(BSTR string) {
    if (string == nullptr) return 0;
    UINT length = 0;
    std::memcpy(&length, BlockOf(string) + headerSize - lengthSize, lengthSize);
    return length / static_cast<UINT>(sizeof(WCHAR));
}

// Makes it VT_EMPTY whatever it held; frees nothing.
extern "C" void WINAPI VariantInit(VARIANTARG* variant) {
    std::memset(variant, 0, sizeof *variant);
}

// Frees the string or releases the interface that it holds and makes it VT_EMPTY. DISP_E_BADVARTYPE, and
// nothing changed: it holds what nothing here puts into one, an array for instance.
extern "C" HRESULT WINAPI VariantClear(VARIANTARG* variant) {
    switch (V_VT(variant)) {
        case VT_EMPTY:
        case VT_NULL:
        case VT_I4:
        case VT_UI4:
        case VT_BOOL:
            break;
        case VT_BSTR:
            SysFreeString(V_BSTR(variant));
            break;
        case VT_UNKNOWN:
            if (V_UNKNOWN(variant) != nullptr) V_UNKNOWN(variant)->Release();
            break;
        default:
            return DISP_E_BADVARTYPE;
    }
    VariantInit(variant);
    return S_OK;
}
