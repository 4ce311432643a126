#include "platform/windows_api.h"
#include "tools/kestova/probes/error_boxes.h"

void ShowNoErrorBoxes() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
}
