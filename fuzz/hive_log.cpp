// The transaction logs of a registry hive that was not closed.
#include <algorithm>
#include <string>

#include "fuzz/patched_image.h"
#include "machine/media/hive/hive_layout.h"
#include "machine/media/hive/hivex_reader.h"
#include "machine/media/hive/marvin32.h"

using namespace machine;

namespace {

constexpr uint32_t completed = 7;
constexpr size_t sector = 512;

void Number(std::string& header, uint32_t begun) {
    PutLe32(header, hiveBegun, begun);
    PutLe32(header, hiveCompleted, completed);
    PutLe32(header, hiveSum, HeaderSum(header));
}

// Makes the hashes of entries fit, so that a reader goes on.
void RepairHashes(std::string& log) {
    for (size_t at = sector; log.compare(at, 4, "HvLE") == 0;) {
        const uint32_t size = Le32(log, at + 4);
        if (size < 40 || size > log.size() - at) return;
        PutLe64(log, at + 24, Marvin32(std::string_view(log).substr(at + 40, size - 40)));
        PutLe64(log, at + 32, Marvin32(std::string_view(log).substr(at, 32)));
        at += size;
    }
}

// A log with the header of the hive and this content, which ends in zeros.
std::string LogOf(const std::string& hive, uint32_t type, std::string_view content) {
    std::string log = hive.substr(0, sector);
    PutLe32(log, 28, type);
    Number(log, completed);
    log += content;
    log.append(16 * sector, '\0');
    RepairHashes(log);
    return log;
}

}  // namespace

// The input: the type of the first log, a sixteenth of its length, and the content of both.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const PatchedImage base("hive");
    if (size < 2) return 0;
    const std::string_view content(reinterpret_cast<const char*>(data) + 2, size - 2);
    const size_t first = std::min(content.size(), size_t{data[1]} * 16);
    std::string hive(base.Bytes());
    Number(hive, completed + 1);
    const std::string logs[] = {LogOf(hive, data[0], content.substr(0, first)),
                                LogOf(hive, 6, content.substr(first))};
    RegistryKeys keys;
    HivexReader().Read({hive, "x", [&](std::string_view suffix) { return logs[suffix == ".LOG2"]; }}, keys);
    return 0;
}
