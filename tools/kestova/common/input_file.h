// Opens a file that the program reads as a whole.
#pragma once

#include <array>
#include <cstddef>
#include <fstream>
#include <istream>
#include <string>

// A stream that has failed if the file cannot be opened. Throws UnreadablePc for a named pipe or a device:
// reading it could wait for ever. The pipe of a shell's process substitution and /dev/null are read.
std::ifstream OpenInput(const std::string& file);

// The rest of the stream; of one that is longer than that many bytes, more than that many. In parts: most
// files are small, and clearing memory for the largest one takes longer than reading them.
inline std::string ReadUpTo(std::istream& stream, size_t most) {
    std::string text;
    std::array<char, 65536> part;
    while (text.size() <= most && stream) {
        stream.read(part.data(), part.size());
        text.append(part.data(), static_cast<size_t>(stream.gcount()));
    }
    return text;
}
