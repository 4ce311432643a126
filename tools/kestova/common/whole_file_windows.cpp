#include <cstdio>
#include <filesystem>
#include <fstream>

#include "platform/windows_api.h"
#include "tools/kestova/common/whole_file.h"
#include "tools/kestova/common/write_target.h"

namespace {

namespace fs = std::filesystem;

// Creates a new file beside the target; empty on failure.
fs::path MakeFresh(const fs::path& target) {
    WCHAR name[MAX_PATH];
    return GetTempFileNameW(target.parent_path().c_str(), TEXT("pc"), 0, name) != 0 ? name : fs::path();
}

bool WriteAll(const fs::path& file, const std::string& text) {
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    return !stream.fail();
}

}  // namespace

bool WriteWholeFile(const std::string& file, const std::string& text) {
    const fs::path target = WriteTarget(file);
    const fs::path fresh = MakeFresh(target);
    if (fresh.empty()) return false;
    if (WriteAll(fresh, text) &&
        MoveFileExW(fresh.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        return true;
    }
    DeleteFileW(fresh.c_str());
    return false;
}
