// A disk image or a stick with a partition table: what AttachImage and InsertStick make of it, and changes.
#include <zlib.h>

#include "fuzz/patched_image.h"
#include "machine/media/device/little_endian.h"
#include "machine/media/disk_image.h"
#include "machine/media/medium_image.h"

using namespace machine;

namespace {

std::string Le32Bytes(uint64_t number) {
    std::string bytes;
    AppendLe64(bytes, number);
    return bytes.substr(0, 4);
}

uint64_t Sum(std::string_view bytes) {
    return crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
}

// The checksums of the entries, and of the header with its own as zero.
void RepairGpt(PatchedImage& image) {
    constexpr size_t header = 512;
    const std::string_view bytes = image.Bytes();
    const uint64_t entries = Le64(bytes, header + 72) * 512;
    const uint64_t length = uint64_t{Le32(bytes, header + 80)} * Le32(bytes, header + 84);
    if (entries > bytes.size() || length > bytes.size() - entries) return;
    image.Put(header + 88, Le32Bytes(Sum(bytes.substr(entries, length))));
    image.Put(header + 16, Le32Bytes(0));
    image.Put(header + 16, Le32Bytes(Sum(bytes.substr(header, Le32(bytes, header + 12)))));
}

void ChangeTable(Disk& disk) {
    for (const Partition& partition : disk.partitions) {
        disk.table->SetActive(partition.offset, true, OtherFlags::Clear);
        disk.table->SetMbrType(partition.offset, 0x27);
    }
    disk.table->Entries();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::vector<std::unique_ptr<PatchedImage>> images = [] {
        std::vector<std::unique_ptr<PatchedImage>> made;
        made.push_back(std::make_unique<PatchedImage>("table-mbr.img"));
        made.push_back(std::make_unique<PatchedImage>("table-gpt.img", RepairGpt));
        made.push_back(std::make_unique<PatchedImage>("stick-table.img"));
        return made;
    }();
    FuzzedDataProvider input(data, size);
    Chosen(input, images).Ask(input, [](const std::string& path) {
        try {
            Disk disk;
            disk.image = path;
            AttachImage(disk, ImageAccess::Overlay);
            ChangeTable(disk);
        } catch (const ImageError&) {
            // A refusal is an answer.
        }
        Pc pc;
        InsertStick(pc, path);
    });
    return 0;
}
