// What the kernel says in a file of one line.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace machine {

// Empty for a file that cannot be read.
inline std::string FirstLine(const std::filesystem::path& file) {
    std::string line;
    std::ifstream stream(file);
    std::getline(stream, line);
    return line;
}

}  // namespace machine
