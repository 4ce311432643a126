#include "machine/facts/store_path.h"

#include <algorithm>

namespace machine {

std::vector<std::string> NamesOf(std::string_view path) {
    std::vector<std::string> names;
    for (size_t start = 0; start < path.size();) {
        const size_t end = std::min(path.find_first_of("/\\", start), path.size());
        if (end > start) names.emplace_back(path.substr(start, end - start));
        start = end + 1;
    }
    return names;
}

std::string Joined(const std::vector<std::string>& names) {
    std::string path;
    for (const std::string& name : names) {
        if (!path.empty()) path += '/';
        path += name;
    }
    return path;
}

std::string Normalized(std::string_view path) {
    return Joined(NamesOf(path));
}

std::string FolderOf(const std::string& normalized) {
    const size_t slash = normalized.rfind('/');
    return slash == std::string::npos ? std::string() : normalized.substr(0, slash);
}

}  // namespace machine
