#include <utf8proc.h>

#include "tools/kestova/common/display_width.h"

size_t CharacterWidth(char32_t character) {
    const int width = utf8proc_charwidth(static_cast<utf8proc_int32_t>(character));
    return static_cast<size_t>(width > 0 ? width : 0);
}

const char* DisplayWidthLicence() {
    return "MIT";
}
