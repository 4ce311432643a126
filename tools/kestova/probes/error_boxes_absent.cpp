// A build with emulated PCs only, which show nothing.

#include "tools/kestova/probes/error_boxes.h"

void ShowNoErrorBoxes() {}
