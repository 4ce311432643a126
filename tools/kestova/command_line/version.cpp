#include "tools/kestova/command_line/version.h"

#include "tools/kestova/common/display_width.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/pc/images.h"
#include "tools/kestova/process/confinement.h"

namespace {

using Rows = std::vector<std::vector<std::string>>;

// Those of the compiler and of the system: in the program, or loaded with it.
std::vector<LinkedLibrary> RuntimeLibraries() {
    return {
#ifdef __GLIBCXX__
        {"libstdc++, libgcc", "GPL-3.0-or-later WITH GCC-exception-3.1"},
#endif
#ifdef __GLIBC__
        {"libc", "LGPL-2.1-or-later"},
#endif
#ifdef __MINGW32__
        {"winpthreads, mingw-w64 runtime", "MIT, BSD and similar"},
#endif
    };
}

Rows WithLibraries(Rows rows, const std::vector<LinkedLibrary>& libraries) {
    for (const LinkedLibrary& library : libraries)
        rows.push_back({library.name, library.licence});
    return rows;
}

}  // namespace

std::string VersionText() {
    const std::vector<LinkedLibrary> forImages = ImageLibraries();
    Rows libraries = {{"CLI11", "BSD-3-Clause"}, {"nlohmann-json", "MIT"}};
    if (const char* const licence = DisplayWidthLicence()) libraries.push_back({"libutf8proc", licence});
    const auto yesOrNo = [](bool is) { return is ? "yes" : "no"; };
    return "kestova " KESTOVA_VERSION "\n" +
           Table({{"built by", KESTOVA_COMPILER},
                  {"runs on", KESTOVA_TARGET},
                  {"opens disk images and disks", yesOrNo(!forImages.empty())},
                  {"gives up system calls", yesOrNo(FiltersSystemCalls())}},
                 "  ") +
           "Linked:\n" + Table(WithLibraries(WithLibraries(libraries, forImages), RuntimeLibraries()), "  ") +
           (forImages.empty()
                ? ""
                : "Loaded when they are needed:\n" + Table(WithLibraries({}, LateImageLibraries()), "  ") +
                      "A program with libntfs-3g may be passed on only under the terms of the GPL, version 3.\n");
}
