// A build with emulated PCs only, which show nothing.

#include "tools/kestova/conformance/error_boxes.h"

void ShowNoErrorBoxes() {}
