#include "tools/kestova/pc/described_pc.h"

#include <filesystem>
#include <fstream>

#include "machine/description/description.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/input_file.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/pc/opened_pc.h"

using machine::NamedMachine;

const NamedMachine* FindMachine(std::string_view name) {
    for (const NamedMachine& named : machine::NamedMachines()) {
        if (named.name == name) return &named;
    }
    return nullptr;
}

namespace {

// A word without a dot or a slash is the name of a machine; an unknown one is wrong use.
[[noreturn]] void RefuseMissing(const std::string& nameOrFile, const std::string& asker) {
    if (nameOrFile.find_first_of("./\\") != std::string::npos) {
        throw UnreadablePc(nameOrFile + ": there is no such file");
    }
    std::vector<std::string> names;
    for (const NamedMachine& named : machine::NamedMachines())
        names.emplace_back(named.name);
    throw WrongUse(asker + ": " + UnknownWord("machine or file", nameOrFile, names));
}

}  // namespace

std::string ReadDescriptionText(const std::string& name) {
    std::error_code error;
    if (!std::filesystem::exists(name, error)) throw UnreadablePc(name + ": there is no such file");
    std::ifstream file = OpenInput(name);
    std::string text = ReadUpTo(file, largestDescription);
    if (std::filesystem::is_directory(name, error) || file.bad() || (file.fail() && !file.eof())) {
        throw UnreadablePc(name + ": cannot be read");
    }
    if (text.size() > largestDescription) {
        throw UnreadablePc(name + ": larger than 16 MiB, so no description; name a disk image with --image");
    }
    if (text.empty()) throw UnreadablePc(name + ": the description is empty");
    if (text.find('\0') != std::string::npos) {
        throw UnreadablePc(name + ": not UTF-8 text, so no description; name a disk image with --image");
    }
    return text;
}

machine::Pc DescribedPc(const std::string& nameOrFile, const std::string& asker) {
    if (const NamedMachine* const named = FindMachine(nameOrFile)) return named->make();
    std::error_code error;
    if (!std::filesystem::exists(nameOrFile, error)) RefuseMissing(nameOrFile, asker);
    try {
        return machine::ReadDescription(ReadDescriptionText(nameOrFile), nameOrFile);
    } catch (const machine::DescriptionError& what) {
        throw UnreadablePc(what.what());
    }
}

std::vector<std::string*> ImagesOf(machine::Pc& pc) {
    std::vector<std::string*> images;
    for (machine::Disk& disk : pc.disks) {
        if (!disk.image.empty()) images.push_back(&disk.image);
    }
    for (machine::Volume& volume : pc.volumes) {
        if (!volume.image.empty()) images.push_back(&volume.image);
    }
    return images;
}

void ResolveImages(machine::Pc& pc, const std::string& file) {
    for (std::string* const image : ImagesOf(pc))
        *image = (std::filesystem::path(file).parent_path() / *image).string();
}
