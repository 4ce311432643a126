#include "tools/kestova/pc/description_text.h"

#include <filesystem>
#include <fstream>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/input_file.h"
#include "tools/kestova/pc/opened_pc.h"

std::string ReadDescriptionText(const std::string& name) {
    std::error_code error;
    if (!std::filesystem::exists(name, error)) throw UnreadablePc(name + ": there is no such file");
    std::ifstream file = OpenInput(name);
    std::string text(largestDescription + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (std::filesystem::is_directory(name, error) || file.bad() || (file.fail() && !file.eof())) {
        throw UnreadablePc(name + ": cannot be read");
    }
    text.resize(static_cast<size_t>(file.gcount()));
    if (text.size() > largestDescription) {
        throw UnreadablePc(name + ": larger than 16 MiB, so no description; name a disk image with --image");
    }
    if (text.empty()) throw UnreadablePc(name + ": the description is empty");
    if (text.find('\0') != std::string::npos) {
        throw UnreadablePc(name + ": not UTF-8 text, so no description; name a disk image with --image");
    }
    return text;
}
