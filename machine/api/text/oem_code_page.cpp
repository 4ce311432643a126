#include "machine/api/text/oem_code_page.h"

#include <algorithm>
#include <iterator>

namespace machine {

namespace {

// Bytes from 0x80 up; those below are the character of the same number.
constexpr WideView upperHalf = TEXT("ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜ¢£¥₧ƒáíóúñÑªº¿⌐¬½¼¡«»░▒▓│┤╡╢╖╕╣║╗╝╜╛┐")
    TEXT("└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0");
constexpr WCHAR firstOfTable = 0x80;
static_assert(upperHalf.size() == 128);

char ToByte(WCHAR unit) {
    if (unit < firstOfTable) return static_cast<char>(unit);
    const size_t index = upperHalf.find(unit);
    return index != WideView::npos ? static_cast<char>(firstOfTable + index) : '?';
}

WCHAR FromByte(char byte) {
    const auto number = static_cast<unsigned char>(byte);
    return number < firstOfTable ? number : upperHalf[number - firstOfTable];
}

}  // namespace

std::string ToOem(WideView text) {
    std::string bytes;
    std::transform(text.begin(), text.end(), std::back_inserter(bytes), ToByte);
    return bytes;
}

std::string FromOem(std::string_view bytes) {
    WideString text;
    std::transform(bytes.begin(), bytes.end(), std::back_inserter(text), FromByte);
    return ToUtf8(text);
}

}  // namespace machine
