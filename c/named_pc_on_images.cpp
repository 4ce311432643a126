// For a library that opens disk images.

#include <cctype>
#include <fstream>
#include <iterator>

#include "c/named_pc.h"
#include "tools/kestova/pc/described_pc.h"
#include "tools/kestova/pc/images.h"
#include "tools/kestova/pc/opened_pc.h"

namespace {

using machine::Pc;

// A description begins with a brace.
bool IsImage(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    const auto first = std::find_if_not(std::istreambuf_iterator<char>(file), {},
                                        [](unsigned char c) { return std::isspace(c) != 0; });
    return first != std::istreambuf_iterator<char>() && *first != '{';
}

// Another program opens virtual disks; it is started before the first of them and ends with them.
class Opening {
  public:
    explicit Opening(const PcChoice& choice) { BeginOpening(choice, {.readsHives = true}); }
    ~Opening() { EndOpening(); }
    Opening(const Opening&) = delete;
    Opening& operator=(const Opening&) = delete;
};

}  // namespace

Pc c_interface::NamedPc(const std::string& nameOrFile, const std::string& asker) {
    if (IsMachine(nameOrFile)) return DescribedPc(nameOrFile, asker);
    const machine::ImageUse inMemory(machine::ImageAccess::Overlay);
    PcChoice choice;
    if (IsImage(nameOrFile)) {
        choice.images = {nameOrFile};
        const Opening opening(choice);
        return OpenImages(choice.images, machine::SystemKind::WindowsPe, inMemory);
    }
    choice.pc = nameOrFile;
    const Opening opening(choice);
    Pc pc = DescribedPc(nameOrFile, asker);
    ResolveImages(pc, nameOrFile);
    AttachImages(pc, inMemory);
    return pc;
}
