// An emulated PC as JSON text; docs/pc-description.md has every key.
#pragma once

#include <stdexcept>
#include <string>

#include "machine/facts/pc.h"

namespace machine {

// What is wrong with a description, and where: "pc.json: disks[0].partitions[1].offset: ..." or, when the
// text is no JSON, "pc.json: line 3, column 7: ...".
class DescriptionError : public std::runtime_error {
  public:
    DescriptionError(const std::string& file, const std::string& place, const std::string& what)
        : std::runtime_error(file + ": " + place + ": " + what) {}
};

// Throws DescriptionError, with `fileName` as the file, for text that describes no PC. Paths of images stay
// as they are written and no image is opened: such a disk has neither size nor table yet, and its partitions
// hold only what the description adds to the image.
Pc ReadDescription(const std::string& text, const std::string& fileName);

// Indented JSON that reads back to the same PC. What equals the default is left out; of a disk on an image,
// so is what the image tells. Throws DescriptionError for text in the PC that is not UTF-8, since JSON cannot
// hold it (contents of files and registry values can be any bytes).
std::string WriteDescription(const Pc& pc);

}  // namespace machine
