#include "tools/kestova/common/display_width.h"

size_t CharacterWidth(char32_t) {
    return 1;
}

const char* DisplayWidthLicence() {
    return nullptr;
}
