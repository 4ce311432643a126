#include "machine/media/device/disk_user.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "machine/media/device/first_line.h"
#include "machine/media/device/in_use.h"

namespace machine {

namespace {

namespace fs = std::filesystem;

std::string Numbers(dev_t device) {
    return std::to_string(major(device)) + ":" + std::to_string(minor(device));
}

// A disk, or a partition of it.
struct Part {
    std::string numbers;  // "8:17"
    std::string node;     // "/dev/sdb1"
    fs::path folder;      // in sysfs
};

Part PartOf(const fs::path& folder) {
    std::string numbers;
    std::ifstream(folder / "dev") >> numbers;
    return {numbers, "/dev/" + folder.filename().string(), folder};
}

std::vector<Part> PartsOf(dev_t disk, const std::string& name) {
    std::error_code error;
    const fs::path folder = fs::canonical(SysfsFolder(disk), error);
    if (error) return {{Numbers(disk), name, {}}};
    std::vector<Part> parts = {PartOf(folder)};
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        if (fs::exists(entry.path() / "partition", error)) parts.push_back(PartOf(entry.path()));
    }
    return parts;
}

// Whether a table of the kernel means the part by such a name.
bool IsNodeOf(const Part& part, const std::string& name) {
    struct stat status = {};
    return stat(name.c_str(), &status) == 0 && S_ISBLK(status.st_mode) &&
           Numbers(status.st_rdev) == part.numbers;
}

// Paths in tables of the kernel have blanks as "\040".
std::string Unescaped(const std::string& text) {
    std::string plain;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\' && at + 3 < text.size()) {
            plain += static_cast<char>(std::stoi(text.substr(at + 1, 3), nullptr, 8));
            at += 3;
        } else {
            plain += text[at];
        }
    }
    return plain;
}

// A file system in a process of its own has numbers that are not those of the disk, but its name.
std::string MountOf(const Part& part) {
    std::ifstream mounts("/proc/self/mountinfo");
    for (std::string line; std::getline(mounts, line);) {
        std::istringstream words(line);
        std::string id;
        std::string parent;
        std::string numbers;
        std::string root;
        std::string place;
        words >> id >> parent >> numbers >> root >> place;
        std::string type;
        std::string source;
        const size_t rest = line.find(" - ");
        if (rest != std::string::npos) std::istringstream(line.substr(rest + 3)) >> type >> source;
        if (numbers == part.numbers || IsNodeOf(part, Unescaped(source)))
            return part.node + " is mounted on " + Unescaped(place);
    }
    return "";
}

std::string SwapOn(const Part& part) {
    std::ifstream swaps("/proc/swaps");
    for (std::string line; std::getline(swaps, line);) {
        if (IsNodeOf(part, Unescaped(line.substr(0, line.find_first_of(" \t")))))
            return part.node + " is swap space in use";
    }
    return "";
}

// LVM, RAID and encryption.
std::string HolderOf(const Part& part) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(part.folder / "holders", error)) {
        std::string name;
        std::ifstream(entry.path() / "dm" / "name") >> name;
        return part.node + " is part of /dev/" + entry.path().filename().string() +
               (name.empty() ? "" : " (" + name + ")");
    }
    return "";
}

// On a part of the disk as on any file.
std::string LoopOn(const Part& part) {
    struct stat status = {};
    if (stat(part.node.c_str(), &status) != 0) return "";
    const std::string loop = LoopDeviceOn(status);
    return loop.empty() ? "" : "the loop device " + loop + " is on " + part.node;
}

// "flags:	0100002", octal; the last two bits are zero for reading only.
bool IsForWriting(const fs::path& descriptorInfo) {
    std::ifstream lines(descriptorInfo);
    for (std::string key; lines >> key;) {
        unsigned long flags = 0;
        if (key == "flags:" && lines >> std::oct >> flags) return (flags & O_ACCMODE) != O_RDONLY;
    }
    return false;
}

// Another process that could write under a change: a virtual machine, an editor, dd. Those of other users are
// seen by root only.
std::string WriterOf(const Part& part) {
    std::error_code error;
    const std::string self = std::to_string(getpid());
    for (const auto& process : fs::directory_iterator("/proc", error)) {
        const std::string number = process.path().filename();
        if (number.find_first_not_of("0123456789") != std::string::npos || number == self) continue;
        for (const auto& descriptor : fs::directory_iterator(process.path() / "fd", error)) {
            if (IsNodeOf(part, descriptor.path()) &&
                IsForWriting(process.path() / "fdinfo" / descriptor.path().filename()))
                return FirstLine(process.path() / "comm") + " (process " + number + ") has " + part.node +
                       " open for writing";
        }
    }
    return "";
}

}  // namespace

std::string SysfsFolder(dev_t device) {
    return "/sys/dev/block/" + Numbers(device);
}

std::string DiskUser(dev_t disk, const std::string& name) {
    for (const Part& part : PartsOf(disk, name)) {
        for (const auto find : {MountOf, SwapOn, HolderOf, LoopOn, WriterOf}) {
            std::string user = find(part);
            if (!user.empty()) return user;
        }
    }
    return "";
}

}  // namespace machine
