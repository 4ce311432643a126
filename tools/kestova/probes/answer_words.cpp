#include "tools/kestova/probes/answer_words.h"

#include <algorithm>

#include "base/guid.h"
#include "base/hexadecimal.h"
#include "machine/calls/result_codes.h"
#include "tools/kestova/common/text.h"

namespace {

std::string ErrorWords(DWORD error) {
    return error == ERROR_SUCCESS ? "ERROR_SUCCESS"
                                  : machine::CodeText(error, machine::FailsWith::FalseAndLastError);
}

}  // namespace

std::string TruthWords(BOOL result) {
    const DWORD error = GetLastError();
    return result ? "TRUE" : "FALSE, " + ErrorWords(error);
}

std::string CountWords(DWORD count) {
    const DWORD error = GetLastError();
    return count != 0 ? std::to_string(count) : "0, " + ErrorWords(error);
}

std::string HresultWords(HRESULT result) {
    return machine::CodeText(static_cast<uint32_t>(result), machine::FailsWith::Hresult);
}

std::string StatusWords(LSTATUS status) {
    return ErrorWords(static_cast<DWORD>(status));
}

std::string Quoted(WideView text) {
    return "\"" + Printable(OneLine(ToUtf8(text))) + "\"";
}

std::string Quoted(const WCHAR* text) {
    return text != nullptr ? Quoted(WideView(text)) : "null";
}

std::string QuotedBuffer(WideView buffer) {
    const size_t end = buffer.find(TEXT('\0'));
    return end != WideView::npos ? Quoted(buffer.substr(0, end)) : Quoted(buffer) + " not terminated";
}

std::string HexBytes(const void* bytes, size_t size) {
    constexpr size_t most = 64;
    const auto* const first = static_cast<const unsigned char*>(bytes);
    std::string words;
    for (size_t at = 0; at < std::min(size, most); ++at)
        words += (at == 0 ? "" : " ") + Hex(first[at], 2).substr(2);
    return size > most ? words + " ... of " + Count(size, "byte") : words;
}

std::string Presence(const GUID& id) {
    return id == GUID{} ? "zero" : "given";
}

std::string Presence(const void* pointer) {
    return pointer != nullptr ? "given" : "null";
}
