#include "tools/kestova/common/input_file.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include "machine/media/device/descriptor.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/memory_device.h"

namespace {

using machine::Descriptor;

// A pipe without a name ends with the program that writes it.
bool IsUnnamedPipe(const Descriptor& opened) {
    struct statfs system = {};
    return fstatfs(opened.Number(), &system) == 0 && system.f_type == PIPEFS_MAGIC;
}

}  // namespace

std::ifstream OpenInput(const std::string& file) {
    std::ifstream stream;
    stream.setstate(std::ios::failbit);
    // Non-blocking, because opening a named pipe would wait for its other end.
    const Descriptor opened(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status = {};
    if (!opened || fstat(opened.Number(), &status) != 0) return stream;
    if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode) && !IsMemoryDevice(status, MemoryDevice::Null) &&
        !IsUnnamedPipe(opened))
        throw UnreadablePc(file + ": not a regular file");
    return std::ifstream("/proc/self/fd/" + std::to_string(opened.Number()), std::ios::binary);
}
