// Records which files of a disk image were changed, and their former content.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "machine/facts/file_store.h"

enum class Since { Opening, Mark };

// Forwards every call to the store of a volume.
class WatchedStore final : public machine::VolumeStore {
  public:
    explicit WatchedStore(std::shared_ptr<VolumeStore> store) : store_(std::move(store)) {}

    machine::FileKind Find(std::string_view path) override { return store_->Find(path); }
    uint32_t Read(std::string_view path, std::string& content) override {
        return store_->Read(path, content);
    }
    uint32_t List(std::string_view path, std::vector<machine::FileEntry>& entries) override {
        return store_->List(path, entries);
    }
    uint32_t ReadParts(std::string_view path, const std::function<void(std::string_view)>& take) override {
        return store_->ReadParts(path, take);
    }
    machine::VolumeCondition Check() override { return store_->Check(); }
    std::string WhyUnchangeable() override { return store_->WhyUnchangeable(); }
    uint32_t Write(std::string_view path, std::string_view content) override;
    uint32_t Remove(std::string_view path) override;

    // The content of a file, or a text that it cannot be read; nothing for a missing file.
    std::optional<std::string> Content(const std::string& path) const;
    // The files that were written or removed, with their former content.
    const std::map<std::string, std::optional<std::string>>& Touched(Since since) const {
        return since == Since::Opening ? touched_ : recent_;
    }
    void Mark() { recent_.clear(); }

  private:
    void Remember(std::string_view path);

    std::shared_ptr<VolumeStore> store_;
    std::map<std::string, std::optional<std::string>> touched_;  // since it was opened
    std::map<std::string, std::optional<std::string>> recent_;   // since the last mark
};
