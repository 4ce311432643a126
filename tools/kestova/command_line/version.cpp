#include "tools/kestova/command_line/version.h"

#include "tools/kestova/common/display_width.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/pc/images.h"
#include "tools/kestova/process/system_calls.h"

std::string VersionText() {
    const std::vector<LinkedLibrary> forImages = ImageLibraries();
    std::vector<std::vector<std::string>> libraries = {{"CLI11", "BSD-3-Clause"}, {"nlohmann-json", "MIT"}};
    if (FiltersSystemCalls()) libraries.push_back({"libseccomp", "LGPL-2.1"});
    if (const char* const licence = DisplayWidthLicence()) libraries.push_back({"libutf8proc", licence});
    for (const LinkedLibrary& library : forImages)
        libraries.push_back({library.name, library.licence});
    const auto yesOrNo = [](bool is) { return is ? "yes" : "no"; };
    return "kestova " KESTOVA_VERSION "\n" +
           Table({{"built by", KESTOVA_COMPILER},
                  {"runs on", KESTOVA_TARGET},
                  {"opens disk images and disks", yesOrNo(!forImages.empty())},
                  {"gives up system calls", yesOrNo(FiltersSystemCalls())}},
                 "  ") +
           "Linked:\n" + Table(libraries, "  ") +
           (forImages.empty()
                ? ""
                : "A program with libntfs-3g may be passed on only under the terms of the GPL, version 3.\n");
}
