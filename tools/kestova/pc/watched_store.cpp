#include "tools/kestova/pc/watched_store.h"

#include <algorithm>

uint32_t WatchedStore::Write(std::string_view path, std::string_view content) {
    Remember(path);
    return store_->Write(path, content);
}

uint32_t WatchedStore::Remove(std::string_view path) {
    Remember(path);
    return store_->Remove(path);
}

std::optional<std::string> WatchedStore::Content(const std::string& path) const {
    std::string content;
    if (store_->Read(path, content) == 0) return content;
    if (store_->Find(path) == machine::FileKind::None) return std::nullopt;
    return "(it cannot be read)";
}

void WatchedStore::Remember(std::string_view path) {
    std::string name(path);
    std::replace(name.begin(), name.end(), '\\', '/');
    const auto content = Content(name);
    touched_.try_emplace(name, content);
    recent_.try_emplace(name, content);
}
