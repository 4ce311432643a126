#include "tools/kestova/common/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "tools/kestova/common/write_target.h"

namespace {

// The mode of a new file.
mode_t UsualMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

mode_t ModeOf(const std::filesystem::path& file) {
    struct stat status = {};
    return stat(file.c_str(), &status) == 0 ? status.st_mode & 07777 : UsualMode();
}

bool WriteAll(int descriptor, const std::string& text) {
    for (size_t done = 0; done < text.size();) {
        const ssize_t written = write(descriptor, text.data() + done, text.size() - done);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        done += static_cast<size_t>(written);
    }
    return true;
}

bool Finish(int descriptor, const std::string& text, mode_t mode) {
    const bool written =
        WriteAll(descriptor, text) && fchmod(descriptor, mode) == 0 && fsync(descriptor) == 0;
    return close(descriptor) == 0 && written;
}

// Makes the new name durable. Failure is ignored: the file is in place all the same.
void SynchroniseFolder(const std::filesystem::path& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    fsync(descriptor);
    close(descriptor);
}

}  // namespace

bool WriteWholeFile(const std::string& file, const std::string& text) {
    const std::filesystem::path target = WriteTarget(file);
    std::string fresh = target.string() + ".XXXXXX";
    const int descriptor = mkstemp(fresh.data());
    if (descriptor < 0) return false;
    if (!Finish(descriptor, text, ModeOf(target)) || std::rename(fresh.c_str(), target.c_str()) != 0) {
        unlink(fresh.c_str());
        return false;
    }
    SynchroniseFolder(target.parent_path());
    return true;
}
