#include "machine/media/device/image_format.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>

#include "machine/media/device/descriptor.h"
#include "machine/media/device/image_access.h"
#include "machine/media/device/little_endian.h"

namespace machine {

namespace {

namespace fs = std::filesystem;
using namespace std::string_view_literals;

class OpenedFile {
  public:
    explicit OpenedFile(const std::string& path)
        : path_(path), descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        struct stat status = {};
        if (descriptor_ && fstat(descriptor_.Number(), &status) == 0 && S_ISREG(status.st_mode))
            size_ = static_cast<uint64_t>(status.st_size);
    }

    const std::string& Path() const { return path_; }
    uint64_t Size() const { return size_; }  // 0 also of what is no regular file
    // Fewer where the file ends, none where it cannot be read.
    std::string Bytes(uint64_t at, size_t length) const {
        if (at >= size_) return "";
        std::string bytes(static_cast<size_t>(std::min<uint64_t>(length, size_ - at)), '\0');
        const ssize_t done = pread(descriptor_.Number(), bytes.data(), bytes.size(), static_cast<off_t>(at));
        bytes.resize(done > 0 ? static_cast<size_t>(done) : 0);
        return bytes;
    }

  private:
    std::string path_;
    Descriptor descriptor_;
    uint64_t size_ = 0;
};

// --- disks that need other files. Whoever made the image chose those, and the server would open them with
// the rights of the user: only parts of the same disk in the same folder pass ---

constexpr const char* flatten = "; make it one file with `qemu-img convert -O qcow2 FILE NEW.qcow2`";

std::string WhyNotQcow2(const OpenedFile& file) {
    const std::string header = file.Bytes(0, 104);
    const uint32_t version = Be32(header, 4);
    if (version != 2 && version != 3)
        return std::string("a qcow image of another version than 2 and 3") + flatten;
    if (Be64(header, 8) != 0)
        return std::string("has only what differs from another image, its backing file") + flatten;
    constexpr uint64_t externalData = 4;
    if (version == 3 && (Be64(header, 72) & externalData) != 0)
        return std::string("has its data in another file") + flatten;
    return "";
}

std::string WhyNotVhd(const OpenedFile& file) {
    constexpr uint32_t differencing = 4;
    if (Be32(file.Bytes(0, 512), 60) != differencing) return "";
    return "has only what differs from another image, its parent; merge them where it was made";
}

// An embedded description has at most this length in what the common tools make.
constexpr size_t longestDescription = size_t{64} << 10;

bool NamesParent(const std::string& description) {
    return description.find("parentFileNameHint") != std::string::npos;
}

constexpr const char* vmdkParent = "has only what differs from another image, its parent";

std::string WhyNotSparseVmdk(const OpenedFile& file) {
    const std::string header = file.Bytes(0, 512);
    constexpr uint32_t compressedInOneGo = 0x30000;
    if ((Le32(header, 8) & compressedInOneGo) != 0) return std::string("a compressed VMDK") + flatten;
    const uint64_t description = Le64(header, 28);
    if (Le64(header, 12) == 0) return std::string("a VMDK that describes other files") + flatten;
    if (description >= file.Size() / 512) return std::string("a VMDK whose description is beyond its end");
    // The server reads the name of a parent at this place, wherever the header has the description.
    constexpr uint64_t usualDescription = 512;
    for (const uint64_t place : {description * 512, usualDescription}) {
        if (NamesParent(file.Bytes(place, longestDescription))) return std::string(vmdkParent) + flatten;
    }
    return "";
}

// Of a file in the same folder, with nothing in it that the server could read as something else.
bool IsPlainName(const std::string& name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](unsigned char unit) {
        return unit > ' ' ? unit != '/' && unit != ':' && unit != 0x7F : unit == ' ';
    });
}

// `extent` begins as in: RW 614400 FLAT "disk-flat.vmdk" 0
std::string WhyNotExtent(const OpenedFile& file, const std::string& extent) {
    std::istringstream words(extent);
    std::string access;
    std::string sectors;
    std::string kind;
    words >> access >> sectors >> kind;
    if (kind == "ZERO") return "";
    if (kind != "FLAT" && kind != "SPARSE" && kind != "VMFS" && kind != "VMFSSPARSE")
        return "a VMDK with a part of an unknown kind";
    const size_t begin = extent.find('"');
    const size_t end = extent.find('"', begin + 1);
    if (begin == std::string::npos || end == std::string::npos) return "a VMDK with a part without a name";
    const std::string name = extent.substr(begin + 1, end - begin - 1);
    const fs::path part = fs::path(file.Path()).parent_path() / name;
    std::error_code error;
    if (!IsPlainName(name) || !fs::is_regular_file(fs::symlink_status(part, error)))
        return "a VMDK with a part that is not a plain file beside it";
    const bool isSparse = kind == "SPARSE" || kind == "VMFSSPARSE";
    return isSparse ? WhyNotSparseVmdk(OpenedFile(part.string())) : "";
}

// As the server reads it: a part begins with a line, and blanks in it can be ends of lines too.
std::string WhyNotDescribedVmdk(const OpenedFile& file) {
    if (file.Size() > longestDescription) return "a VMDK with a description that is too long";
    const std::string description = file.Bytes(0, longestDescription);
    if (NamesParent(description)) return std::string(vmdkParent) + flatten;
    for (size_t at = 0; at < description.size(); at = description.find('\n', at)) {
        at = description.find_first_not_of(" \t\r\n\v\f", at);
        if (at == std::string::npos) break;
        if (description.compare(at, 2, "RW") != 0) continue;
        const std::string reason = WhyNotExtent(file, description.substr(at));
        if (!reason.empty()) return reason + flatten;
    }
    return "";
}

// --- the table ---

struct Row {
    uint64_t at;
    std::string_view signature;
    OpenedBy device;
    const char* server;  // of a virtual disk
    std::string (*whyNot)(const OpenedFile& file);
    const char* what;  // of what is no disk that can be opened: its kind, and the way to one
};

constexpr Row Served(uint64_t at, std::string_view signature, const char* server,
                     std::string (*whyNot)(const OpenedFile& file) = nullptr) {
    return {at, signature, OpenedBy::Nbd, server, whyNot, nullptr};
}

constexpr Row Refused(std::string_view signature, const char* what) {
    return {0, signature, OpenedBy::File, nullptr, nullptr, what};
}

constexpr Row rows[] = {
    Served(0, "QFI\xFB"sv, "qcow2", WhyNotQcow2),
    Served(0, "vhdxfile"sv, "vhdx"),
    Served(0, "conectix"sv, "vpc", WhyNotVhd),
    Served(0, "KDMV"sv, "vmdk", WhyNotSparseVmdk),
    Served(0, "# Disk DescriptorFile"sv, "vmdk", WhyNotDescribedVmdk),
    Served(64, "\x7F\x10\xDA\xBE"sv, "vdi"),
    {0, "EVF\x09\x0D\x0A\xFF\0"sv, OpenedBy::Ewf, nullptr, nullptr, nullptr},
    Refused("COWD"sv, "a VMDK of an old version; convert it with `qemu-img convert -O qcow2 FILE NEW.qcow2`"),
    Refused("QED\0"sv, "a QED image; convert it with `qemu-img convert -O qcow2 FILE NEW.qcow2`"),
    Refused("WithoutFreeSpace"sv,
            "a Parallels image; convert it with `qemu-img convert -O qcow2 FILE NEW.qcow2`"),
    Refused("WithouFreSpacExt"sv,
            "a Parallels image; convert it with `qemu-img convert -O qcow2 FILE NEW.qcow2`"),
    Refused("MSWIM\0\0\0"sv, "a WIM archive of files, no disk image; `wimapply FILE FOLDER` takes them out"),
    Refused(
        "partclone-image"sv,
        "a partclone image of one volume, no disk image; `partclone.restore -C -s FILE -O NEW` makes a raw one"),
    Refused("\x1F\x8B"sv, "compressed with gzip; expand it with `gunzip --keep FILE`"),
    Refused("BZh"sv, "compressed with bzip2; expand it with `bunzip2 --keep FILE`"),
    Refused("\xFD"
            "7zXZ\0"sv,
            "compressed with xz; expand it with `unxz --keep FILE`"),
    Refused("\x28\xB5\x2F\xFD"sv, "compressed with zstd; expand it with `unzstd FILE`"),
    Refused("\x04\x22\x4D\x18"sv, "compressed with lz4; expand it with `unlz4 FILE`"),
    Refused("PK\x03\x04"sv, "a zip archive, no disk image; expand it with `unzip FILE`"),
    Refused("7z\xBC\xAF\x27\x1C"sv, "a 7z archive, no disk image; expand it with `7z x FILE`"),
    Refused("Rar!\x1A\x07"sv, "a rar archive, no disk image; expand it with `unrar x FILE`"),
};

// --- a VHD of fixed length: a raw disk, and behind it a footer ---

constexpr uint64_t footerLength = 512;

// The complement of the sum of all other bytes.
bool HasChecksum(std::string footer, size_t at) {
    const uint32_t expected = Be32(footer, at);
    footer.replace(at, 4, 4, '\0');
    uint32_t sum = 0;
    for (const char byte : footer)
        sum += static_cast<unsigned char>(byte);
    return ~sum == expected;
}

bool IsFixedVhd(const OpenedFile& file) {
    constexpr uint32_t fixed = 2;
    if (file.Size() <= footerLength) return false;
    const std::string footer = file.Bytes(file.Size() - footerLength, footerLength);
    return footer.starts_with("conectix") && Be32(footer, 60) == fixed && HasChecksum(footer, 64);
}

// Empty if it can be opened.
std::string WhyNot(const Row& row, const OpenedFile& file) {
    if (row.what != nullptr) return row.what;
    return row.whyNot != nullptr ? row.whyNot(file) : "";
}

// A first sector with this is that of a disk or a volume, whatever its code begins with.
bool HasBootSignature(const OpenedFile& file) {
    return file.Bytes(510, 2) == "\x55\xAA"sv;
}

// Null of a raw disk.
const Row* FindRow(const OpenedFile& file) {
    if (HasBootSignature(file)) return nullptr;
    const Row* const row = std::find_if(std::begin(rows), std::end(rows), [&](const Row& candidate) {
        return file.Bytes(candidate.at, candidate.signature.size()) == candidate.signature;
    });
    return row != std::end(rows) ? row : nullptr;
}

}  // namespace

OpenedBy SignedFor(const std::string& path) {
    const Row* const row = FindRow(OpenedFile(path));
    return row != nullptr ? row->device : OpenedBy::File;
}

ImageFormat FormatOf(const std::string& path) {
    const OpenedFile file(path);
    if (IsFixedVhd(file)) return {.bytesAfterDisk = footerLength};
    const Row* const row = FindRow(file);
    if (row == nullptr) return {};
    const std::string reason = WhyNot(*row, file);
    if (!reason.empty()) throw ImageError(path + ": " + reason);
    return {.device = row->device, .server = row->server != nullptr ? row->server : ""};
}

}  // namespace machine
