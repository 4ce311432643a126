// Reads and writes an emulated PC as JSON text; docs/pc-description.md documents every key.
#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "machine/facts/pc.h"

namespace machine {

// An error with its place: "pc.json: disks[0].partitions[1].offset: ..." or, for text that is not JSON,
// "pc.json: line 3, column 7: ...".
class DescriptionError : public std::runtime_error {
  public:
    DescriptionError(const std::string& file, const std::string& place, const std::string& what)
        : std::runtime_error(file + ": " + place + ": " + what) {}
};

struct Mistake {
    size_t line;  // from 1, as the column, which counts bytes
    size_t column;
    std::string place;  // "disks[0].partitions[1].offset"; empty for the outermost value, and for text that
                        // is not JSON
    std::string what;
};

// Throws DescriptionError, with `fileName` as the file, for text that does not describe a PC. Image paths
// are kept as written, and no image is opened: a disk on an image has no size or table yet, and its
// partitions contain only what the description adds to the image.
Pc ReadDescription(const std::string& text, const std::string& fileName);

// Everything for which ReadDescription would refuse the text, in the order of the text; nothing for one that
// it takes. What follows only from another mistake is left out: text that is not JSON has one mistake, and
// values that contradict each other are named where each of them is right by itself.
std::vector<Mistake> FindMistakes(const std::string& text);

// Indented JSON that reads back as the same PC. Values equal to their defaults are left out, as are values
// supplied by an image. Throws DescriptionError if text in the PC is not UTF-8, since JSON cannot contain
// it (contents of files and registry values can be any bytes).
std::string WriteDescription(const Pc& pc);

// Where two PCs differ: "disk 0, partition 2, bootIndicator", and what each has there, as their descriptions
// write it; nothing for what only the other one has.
struct Difference {
    std::string place;
    std::optional<std::string> left;
    std::optional<std::string> right;
};

// Whether the orders in which the PC lists disks, partitions, packs and encryptable volumes count.
enum class ListOrder { Ignored, Compared };

// All differences, in the order of a description. Disks, partitions, packs, volumes and encryptable volumes
// are compared with those of the same number, name or letters, wherever they stand; those without one, or
// with one that others of their list have too, by their position. Of an image only its path is compared.
std::vector<Difference> Compare(const Pc& left, const Pc& right, ListOrder order = ListOrder::Ignored);

// The JSON Schema of what ReadDescription takes, indented. What only the whole description shows, such as
// partitions that overlap, it does not say.
std::string DescriptionSchema();

}  // namespace machine
