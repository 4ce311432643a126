#include "machine/api/oem_code_page.h"

#include <algorithm>
#include <iterator>

namespace machine {

namespace {

// From 0x80 on; every byte below is the character of its own number.
constexpr std::u16string_view upperHalf =
    u"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜ¢£¥₧ƒáíóúñÑªº¿⌐¬½¼¡«»░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
    u"└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0";
constexpr char16_t firstOfTable = 0x80;
static_assert(upperHalf.size() == 128);

char ToByte(char16_t unit) {
    if (unit < firstOfTable) return static_cast<char>(unit);
    const size_t index = upperHalf.find(unit);
    return index != std::u16string_view::npos ? static_cast<char>(firstOfTable + index) : '?';
}

}  // namespace

std::string ToOem(std::u16string_view text) {
    std::string bytes;
    std::transform(text.begin(), text.end(), std::back_inserter(bytes), ToByte);
    return bytes;
}

}  // namespace machine
