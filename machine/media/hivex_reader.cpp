#include "machine/media/hivex_reader.h"

#include <hivex.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "base/utf.h"
#include "machine/media/device/store_errors.h"

namespace machine {

namespace {

constexpr size_t deepestKey = 512;

struct HiveClose {
    void operator()(hive_h* hive) const { hivex_close(hive); }
};
struct Release {
    template <typename T>
    void operator()(T* memory) const {
        std::free(memory);
    }
};
using HiveOwner = std::unique_ptr<hive_h, HiveClose>;
template <typename T>
using HivexMemory = std::unique_ptr<T, Release>;

// A file in memory, because libhivex opens hives by path.
class MemoryFile {
  public:
    explicit MemoryFile(std::string_view content) : descriptor_(memfd_create("hive", MFD_CLOEXEC)) {
        while (!content.empty()) {
            const ssize_t done = write(descriptor_, content.data(), content.size());
            if (done <= 0) break;  // the truncated hive is rejected as damaged
            content.remove_prefix(static_cast<size_t>(done));
        }
    }
    ~MemoryFile() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

  private:
    int descriptor_;
};

// Text is stored with a terminator, which is not part of it.
std::string TextOf(std::string_view stored) {
    std::u16string text(stored.size() / sizeof(char16_t), u'\0');
    stored.copy(reinterpret_cast<char*>(text.data()), text.size() * sizeof(char16_t));
    if (text.ends_with(u'\0')) text.pop_back();
    return ToUtf8(text);
}

// Reads the keys of an open hive; false if it is damaged.
class HiveWalk {
  public:
    HiveWalk(hive_h* hive, RegistryKeys& keys) : hive_(hive), keys_(keys) {}

    bool Take(hive_node_h node, const std::string& path, size_t depth) {
        if (depth > deepestKey || !seen_.insert(node).second) return false;
        if (!TakeValues(node, path)) return false;
        const HivexMemory<hive_node_h> children(hivex_node_children(hive_, node));
        if (!children) return false;
        for (const hive_node_h* child = children.get(); *child != 0; ++child) {
            const HivexMemory<char> name(hivex_node_name(hive_, *child));
            if (!name) return false;
            if (!Take(*child, path.empty() ? name.get() : path + '\\' + name.get(), depth + 1)) return false;
        }
        return true;
    }

  private:
    bool TakeValues(hive_node_h node, const std::string& path) {
        auto& values = keys_[path];
        const HivexMemory<hive_value_h> handles(hivex_node_values(hive_, node));
        if (!handles) return false;
        for (const hive_value_h* handle = handles.get(); *handle != 0; ++handle) {
            const HivexMemory<char> name(hivex_value_key(hive_, *handle));
            hive_type type = hive_t_none;
            size_t length = 0;
            const HivexMemory<char> data(hivex_value_value(hive_, *handle, &type, &length));
            if (!name || !data) return false;
            const std::string_view stored(data.get(), length);
            values[name.get()] = {static_cast<uint32_t>(type),
                                  type == hive_t_string ? TextOf(stored) : std::string(stored)};
        }
        return true;
    }

    hive_h* hive_;
    RegistryKeys& keys_;
    std::set<hive_node_h> seen_;
};

}  // namespace

uint32_t HivexReader::Read(std::string_view file, RegistryKeys& keys) {
    const MemoryFile copy(file);
    const HiveOwner hive(hivex_open(copy.Path().c_str(), 0));
    if (!hive) return errorBadHive;
    const hive_node_h root = hivex_root(hive.get());
    RegistryKeys read;
    if (root == 0 || !HiveWalk(hive.get(), read).Take(root, "", 0)) return errorBadHive;
    keys = std::move(read);
    return 0;
}

}  // namespace machine
