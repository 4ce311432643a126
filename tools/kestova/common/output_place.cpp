#include "tools/kestova/common/output_place.h"

#include <fcntl.h>

#include <algorithm>
#include <climits>
#include <deque>

namespace {

using machine::Descriptor;

// The parts of a path; a slash at the end leads into the folder.
std::deque<std::string> Parts(const std::string& path) {
    std::deque<std::string> parts;
    for (size_t at = 0; at <= path.size();) {
        const size_t slash = std::min(path.find('/', at), path.size());
        if (slash > at) parts.push_back(path.substr(at, slash - at));
        at = slash + 1;
    }
    if (parts.empty() || path.ends_with('/')) parts.emplace_back(".");
    return parts;
}

Descriptor Start(const std::string& path) {
    return Descriptor(open(path.starts_with('/') ? "/" : ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
}

std::string LinkTarget(const Descriptor& link) {
    char target[PATH_MAX];
    const ssize_t length = readlinkat(link.Number(), "", target, sizeof target);
    return {target, length > 0 ? static_cast<size_t>(length) : 0};
}

struct stat StatusOf(const Descriptor& descriptor) {
    struct stat status = {};
    fstat(descriptor.Number(), &status);
    return status;
}

}  // namespace

bool IsForeign(const struct stat& folder, const struct stat& file) {
    const bool isShared = (folder.st_mode & S_ISVTX) != 0 && (folder.st_mode & S_IWOTH) != 0;
    return isShared && file.st_uid != geteuid() && file.st_uid != folder.st_uid;
}

OutputPlace FindPlace(const std::string& path) {
    constexpr int mostLinks = 40;
    std::deque<std::string> rest = Parts(path);
    OutputPlace place{.folder = Start(path)};
    for (int links = 0; place.folder; rest.pop_front()) {
        place.name = rest.front();
        Descriptor entry(openat(place.folder.Number(), place.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
        const struct stat status = StatusOf(entry);
        if (entry && S_ISLNK(status.st_mode)) {
            const std::string target = LinkTarget(entry);
            if (IsForeign(StatusOf(place.folder), status)) place.foreignLink = place.name;
            if (!place.foreignLink.empty() || target.empty() || ++links > mostLinks) break;
            const std::deque<std::string> parts = Parts(target);
            rest.insert(rest.begin() + 1, parts.begin(), parts.end());
            if (target.starts_with('/')) place.folder = Start(target);
            continue;
        }
        if (rest.size() == 1) {
            if (entry) place.found = status;
            return place;
        }
        place.folder = S_ISDIR(status.st_mode) ? std::move(entry) : Descriptor();
    }
    place.folder = Descriptor();
    return place;
}
