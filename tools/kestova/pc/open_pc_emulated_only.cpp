// A build with emulated PCs only.

#include "tools/kestova/common/errors.h"
#include "tools/kestova/pc/opened_pc.h"

std::unique_ptr<OpenedPc> OpenPc(const PcChoice& choice, Access access) {
    const bool isNamed = !choice.images.empty() || !choice.pc.empty();
    if (access == Access::Change && !isNamed && !choice.dryRun) {
        throw WrongUse(
            "no PC was named; what is to be changed is a disk image (--image), or a machine that comes with the "
            "tool or a description (--pc)");
    }
    return OpenEmulatedPc(choice, access);
}
