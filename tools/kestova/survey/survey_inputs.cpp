#include "tools/kestova/survey/survey_inputs.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>
#include <string_view>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/input_file.h"
#include "tools/kestova/common/text.h"

namespace {

namespace fs = std::filesystem;

constexpr std::string_view descriptionEnding = ".json";
constexpr std::string_view imageEndings[] = {".img",  ".raw", ".dd",    ".vhd", ".vhdx",
                                             ".vmdk", ".vdi", ".qcow2", ".E01"};

constexpr size_t largestList = size_t{64} << 20;

bool IsListed(const std::string& file) {
    return file.ends_with(descriptionEnding) ||
           std::ranges::any_of(imageEndings, [&](std::string_view ending) { return file.ends_with(ending); });
}

std::vector<std::string> FilesIn(const std::string& folder) {
    std::vector<std::string> files;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        if (!entry.is_directory(error) && IsListed(entry.path().string()))
            files.push_back(entry.path().string());
    }
    if (files.empty()) throw WrongUse(folder + ": there are no descriptions and no images in this folder");
    std::ranges::sort(files);
    return files;
}

}  // namespace

std::vector<std::string> SurveyInputs(const std::vector<std::string>& names) {
    std::vector<std::string> inputs;
    std::set<std::string> known;
    for (const std::string& name : names) {
        std::error_code error;
        for (const std::string& file : fs::is_directory(name, error) ? FilesIn(name) : std::vector{name})
            if (known.insert(file).second) inputs.push_back(file);
    }
    return inputs;
}

std::vector<std::string> NamesFrom(const std::string& file) {
    std::ifstream opened;
    if (file != "-") opened.open(file, std::ios::binary);
    const std::string text = ReadUpTo(file == "-" ? std::cin : opened, largestList);
    if (text.size() > largestList)
        throw WrongUse("--from: " + file + " is larger than 64 MiB, so no list of names");
    std::istringstream lines(text);
    std::vector<std::string> names;
    for (std::string name; std::getline(lines, name);)
        if (!name.empty()) names.push_back(name);
    if (names.empty()) throw WrongUse("--from: " + file + " cannot be read, or names no PC");
    return names;
}

Shard ReadShard(const std::string& text) {
    const char* const end = text.data() + text.size();
    Shard shard;
    const auto part = std::from_chars(text.data(), end, shard.part);
    const bool hasBoth = part.ec == std::errc() && part.ptr != end && *part.ptr == '/';
    const auto of = hasBoth ? std::from_chars(part.ptr + 1, end, shard.of) : part;
    if (!hasBoth || of.ec != std::errc() || of.ptr != end || shard.part < 1 || shard.part > shard.of)
        throw WrongUse("--shard: '" + Printable(text) + "' is not like 2/8, the second of eight parts");
    return shard;
}

std::vector<std::string> PartOf(const std::vector<std::string>& inputs, const Shard& shard) {
    std::vector<std::string> part;
    for (size_t at = shard.part - 1; at < inputs.size(); at += shard.of)
        part.push_back(inputs[at]);
    return part;
}

bool IsDescriptionFile(const std::string& file) {
    std::error_code error;
    if (file.ends_with(descriptionEnding) || !fs::is_regular_file(file, error))
        return !fs::is_block_file(file, error);
    std::ifstream stream(file, std::ios::binary);
    char first = '\0';
    stream >> first;
    return first == '{' || first == '/' || first == '\xEF';  // a comment, a byte order mark
}
