#include "machine/media/hive/hivex_reader.h"

#include <hivex.h>
#include <iconv.h>
#include <sys/mman.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>

#include "base/utf.h"
#include "machine/media/device/descriptor.h"
#include "machine/media/device/late_library.h"
#include "machine/media/device/store_errors.h"
#include "machine/media/device/transfer.h"
#include "machine/media/hive/hive_cells.h"
#include "machine/media/hive/hive_log.h"

namespace machine {

namespace {

constexpr const char* mountedDevices = "MountedDevices";

// The functions in use of libhivex. The C library loads the code for the texts of a hive when it first meets
// one, and keeps it as long as a conversion is open.
struct LibHivex {
    LateLibrary library{"libhivex.so.0", "libhivex0"};
    decltype(&hivex_open) open = library.Function("hivex_open");
    decltype(&hivex_close) close = library.Function("hivex_close");
    decltype(&hivex_root) root = library.Function("hivex_root");
    decltype(&hivex_node_get_child) node_get_child = library.Function("hivex_node_get_child");
    decltype(&hivex_node_values) node_values = library.Function("hivex_node_values");
    decltype(&hivex_value_type) value_type = library.Function("hivex_value_type");
    decltype(&hivex_value_key) value_key = library.Function("hivex_value_key");
    decltype(&hivex_value_value) value_value = library.Function("hivex_value_value");
    std::array<iconv_t, 4> conversions = {iconv_open("UTF-8", "UTF-16LE"), iconv_open("UTF-16LE", "UTF-8"),
                                          iconv_open("UTF-8", "LATIN1"), iconv_open("LATIN1", "UTF-8")};
};

const LibHivex& Hivex() {
    static const LibHivex loaded;
    return loaded;
}

struct HiveClose {
    void operator()(hive_h* hive) const { Hivex().close(hive); }
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

// A file in memory, because libhivex opens hives by path. None if there is no memory for it.
Descriptor InMemory(std::string_view content) {
    Descriptor file(memfd_create("hive", MFD_CLOEXEC));
    return file && WriteAll(file.Number(), content) ? std::move(file) : Descriptor();
}
// Text is stored with a terminator, which is not part of it.
std::string TextOf(std::string_view stored) {
    std::u16string text(stored.size() / sizeof(char16_t), u'\0');
    stored.copy(reinterpret_cast<char*>(text.data()), text.size() * sizeof(char16_t));
    if (text.ends_with(u'\0')) text.pop_back();
    return ToUtf8(text);
}

// Reads the values of a key; false if it is damaged. Several values can claim the same bytes of the hive: no
// more is read than the hive is long.
bool ReadValues(hive_h* hive, hive_node_h key, size_t most, std::map<std::string, RegistryValue>& values) {
    const HivexMemory<hive_value_h> handles(Hivex().node_values(hive, key));
    if (!handles) return false;
    for (const hive_value_h* handle = handles.get(); *handle != 0; ++handle) {
        hive_type type = hive_t_none;
        size_t length = 0;
        if (Hivex().value_type(hive, *handle, &type, &length) != 0 || length > most) return false;
        most -= length;
        const HivexMemory<char> name(Hivex().value_key(hive, *handle));
        const HivexMemory<char> data(Hivex().value_value(hive, *handle, &type, &length));
        if (!name || !data) return false;
        const std::string_view stored(data.get(), length);
        // A hive can hold any number, which is no value of the enumeration then.
        uint32_t number = 0;
        std::memcpy(&number, &type, sizeof(number));
        values[name.get()] = {number, number == hive_t_string ? TextOf(stored) : std::string(stored)};
    }
    return true;
}

}  // namespace

void LoadHivex() {
    Hivex();
}

void HivexReader::Replay(HiveFile& file) {
    if (IsClosed(file.content)) return;
    std::vector<std::string> logs;
    for (const char* const suffix : {".LOG1", ".LOG2", ".LOG"})
        logs.push_back(file.beside ? file.beside(suffix) : "");
    const HiveReplay replay = ReplayLogs(file.content, logs);
    std::string note = file.owner + " was not closed, and its transaction logs were ";
    if (replay.isApplied) note += "applied to what is shown";
    if (replay.isApplied && !replay.unapplied.empty()) note += ", but not to the end";
    if (!replay.isApplied) note += "not applied";
    if (!replay.unapplied.empty()) note += ", because " + replay.unapplied + ": letters may be old";
    if (std::find(notes_.begin(), notes_.end(), note) == notes_.end()) notes_.push_back(note);
}

uint32_t HivexReader::Read(HiveFile file, RegistryKeys& keys) {
    if (!file.content.starts_with("regf")) return errorBadHive;
    Replay(file);
    MendCells(file.content);
    const Descriptor copy = InMemory(file.content);
    const std::string path = "/proc/self/fd/" + std::to_string(copy.Number());
    // Unsafe: a damaged key does not hide those beside it.
    const HiveOwner hive(Hivex().open(path.c_str(), HIVEX_OPEN_UNSAFE));
    if (!hive) return errorBadHive;
    const hive_node_h root = Hivex().root(hive.get());
    if (root == 0) return errorBadHive;
    RegistryKeys read = {{"", {}}};
    errno = 0;
    const hive_node_h devices = Hivex().node_get_child(hive.get(), root, mountedDevices);
    const bool isDamaged = devices == 0
                               ? errno != 0
                               : !ReadValues(hive.get(), devices, file.content.size(), read[mountedDevices]);
    if (isDamaged) return errorBadHive;
    keys = std::move(read);
    return 0;
}

}  // namespace machine
