#include "machine/media/device/disk_identity.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <filesystem>
#include <fstream>
#include <initializer_list>

#include "machine/media/device/descriptor.h"
#include "machine/media/device/disk_user.h"

namespace machine {

namespace {

namespace fs = std::filesystem;

// Without the blanks around it. A dishonest device can name itself with characters that control a terminal:
// they become blanks.
std::string Plain(std::string text) {
    for (char& unit : text) {
        if (static_cast<unsigned char>(unit) < ' ' || unit == 0x7F) unit = ' ';
    }
    text.erase(0, text.find_first_not_of(' '));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

std::string FirstOf(const fs::path& folder, std::initializer_list<const char*> files) {
    for (const char* const file : files) {
        std::string line;
        std::ifstream stream(folder / file);
        std::getline(stream, line);
        line = Plain(line);
        if (!line.empty()) return line;
    }
    return "";
}

// That of the drive in an adapter, which only udev asks for it.
std::string UdevSerial(dev_t disk) {
    constexpr std::string_view key = "E:ID_SERIAL_SHORT=";
    std::ifstream properties("/run/udev/data/b" + std::to_string(major(disk)) + ":" +
                             std::to_string(minor(disk)));
    for (std::string line; std::getline(properties, line);) {
        if (line.starts_with(key)) return Plain(line.substr(key.size()));
    }
    return "";
}

}  // namespace

bool IsDisk(const std::string& path) {
    std::error_code error;
    return fs::is_block_file(path, error);
}

DiskIdentity IdentityOf(const std::string& path) {
    DiskIdentity identity;
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return identity;
    const fs::path folder = SysfsFolder(status.st_rdev);
    identity.model = FirstOf(folder, {"device/model", "loop/backing_file"});
    identity.serial = UdevSerial(status.st_rdev);
    if (identity.serial.empty()) identity.serial = FirstOf(folder, {"device/serial", "serial"});
    const Descriptor disk(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (disk) ioctl(disk.Number(), BLKGETSIZE64, &identity.bytes);
    return identity;
}

}  // namespace machine
