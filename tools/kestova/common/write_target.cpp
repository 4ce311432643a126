#include "tools/kestova/common/write_target.h"

namespace fs = std::filesystem;

fs::path WriteTarget(const fs::path& file) {
    constexpr int mostLinks = 40;
    std::error_code error;
    fs::path target = fs::absolute(file, error);
    for (int links = 0; links < mostLinks && fs::is_symlink(target, error); ++links)
        target = target.parent_path() / fs::read_symlink(target, error);
    const fs::path canonical = fs::weakly_canonical(target, error);
    return error ? target : canonical;
}
