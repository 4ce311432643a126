#include "tools/kestova/pc/described_images.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "tools/kestova/pc/opened_pc.h"

namespace {

namespace fs = std::filesystem;

// What follows the spaces, if that begins with this character.
std::optional<std::string_view> After(char character, std::string_view text) {
    const size_t at = text.find_first_not_of(" \t\r\n");
    if (at == std::string_view::npos || text[at] != character) return std::nullopt;
    return text.substr(at + 1);
}

}  // namespace

std::optional<std::vector<std::string>> DescribedImages(const std::string& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error)) return std::nullopt;
    if (fs::file_size(file, error) > largestDescription) return std::vector<std::string>();
    std::ifstream stream(file, std::ios::binary);
    const std::string content(std::istreambuf_iterator<char>(stream), {});
    // An escape can hide the key, too.
    if (content.find("\\u") != std::string::npos) return std::nullopt;
    constexpr std::string_view key = "\"image\"";
    std::vector<std::string> images;
    std::string_view rest = content;
    for (size_t at = rest.find(key); at != std::string_view::npos; at = rest.find(key)) {
        rest.remove_prefix(at + key.size());
        const auto value = After(':', rest);
        const auto name = value ? After('"', *value) : std::nullopt;
        if (!name) continue;
        const std::string_view image = name->substr(0, name->find('"'));
        if (image.find('\\') != std::string_view::npos) return std::nullopt;
        images.push_back((fs::path(file).parent_path() / image).string());
    }
    return images;
}
