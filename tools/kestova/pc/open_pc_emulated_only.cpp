// A build with emulated PCs only.

#include "tools/kestova/pc/opened_pc.h"

std::unique_ptr<OpenedPc> OpenPc(const PcChoice& choice, Access access) {
    return OpenEmulatedPc(choice, access);
}
