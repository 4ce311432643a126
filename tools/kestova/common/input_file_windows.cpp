#include <filesystem>

#include "tools/kestova/common/input_file.h"

std::ifstream OpenInput(const std::string& file) {
    return std::ifstream(std::filesystem::path(file), std::ios::binary);
}
