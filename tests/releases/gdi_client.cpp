// An application that draws. The library's headers leave what it reads of windows.h as it was: GetObject,
// which methods of the platform's interfaces are named too, is still that of GDI.

#include "logging/logging.h"
#include "manager/kestova.h"

int WeightOf(HFONT font);

int WeightOf(HFONT font) {
    LOGFONT face = {};
    return GetObject(font, sizeof(face), &face) != 0 ? face.lfWeight : FW_DONTCARE;
}
