#include "machine/api/com/memory.h"

#include <cstring>

#include "machine/api/call/call.h"

using namespace machine;

namespace {

// A system string stores its length in bytes before the first unit. The block begins a little earlier
// still, to keep the units aligned.
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

// Task memory; the ledger lists it as "CoTaskMem". Never fails.
extern "C" LPVOID WINAPI CoTaskMemAlloc(SIZE_T size) {
    const Turn turn;
    return EmulatedPc::Current().ledger.Lend("CoTaskMem", "CoTaskMem", size);
}

// Frees task memory of any kind; null is allowed.
extern "C" void WINAPI CoTaskMemFree(LPVOID memory) {
    const Turn turn;
    EmulatedPc::Current().ledger.Return("CoTaskMem", memory);
}

// A copy of the text up to its terminator. Null if the text is null or memory is exhausted. The caller
// frees it with SysFreeString.
extern "C" BSTR WINAPI SysAllocString(const OLECHAR* text) {
    return Answer<BSTR>("SysAllocString", {ToUtf8(text)}, [&](EmulatedPc& pc) {
        return text != nullptr ? LendSystemString(pc, text) : nullptr;
    });
}

// Null is allowed.
extern "C" void WINAPI SysFreeString(BSTR string) {
    const Turn turn;
    if (string != nullptr) EmulatedPc::Current().ledger.Return("BSTR", BlockOf(string));
}

// The length in units, without the terminator; 0 for null.
extern "C" UINT WINAPI SysStringLen(BSTR string) {
    if (string == nullptr) return 0;
    UINT length = 0;
    std::memcpy(&length, BlockOf(string) + headerSize - lengthSize, lengthSize);
    return length / static_cast<UINT>(sizeof(WCHAR));
}

// Sets the type to VT_EMPTY without freeing the previous value.
extern "C" void WINAPI VariantInit(VARIANTARG* variant) {
    std::memset(variant, 0, sizeof *variant);
}

// Frees the string or releases the interface in it and sets it to VT_EMPTY. DISP_E_BADVARTYPE, with nothing
// changed, for a type that the emulated PC never stores, such as an array.
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
