#include "machine/media/volumes/store_path.h"

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

std::string Normalized(std::string_view path) {
    std::string normalized;
    for (const std::string& name : NamesOf(path)) {
        if (!normalized.empty()) normalized += '/';
        normalized += name;
    }
    return normalized;
}

}  // namespace machine
