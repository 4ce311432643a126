#include "logging/windows/appended_file.h"

#include <cstddef>
#include <cstring>
#include <vector>

#include "logging/plain_file.h"

AppendedFile::AppendedFile(const std::basic_string<WCHAR>& path, Use use)
    : handle_(CreateFileW(path.c_str(),
                          (use == Use::Append ? FILE_APPEND_DATA : DELETE) | FILE_READ_ATTRIBUTES,
                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                          use == Use::Append ? OPEN_ALWAYS : OPEN_EXISTING,
                          FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr)),
      size_(0) {
    if (!IsOpen()) return;
    BY_HANDLE_FILE_INFORMATION facts{};
    if (GetFileInformationByHandle(handle_, &facts) && IsPlainFile(GetFileType(handle_), facts)) {
        size_ = ULONGLONG{facts.nFileSizeHigh} << 32 | facts.nFileSizeLow;
        return;
    }
    CloseHandle(handle_);
    handle_ = INVALID_HANDLE_VALUE;
}

AppendedFile::~AppendedFile() {
    if (IsOpen()) CloseHandle(handle_);
}

void AppendedFile::Append(const std::string& line) {
    DWORD written = 0;
    WriteFile(handle_, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
}

void AppendedFile::RenameTo(const std::basic_string<WCHAR>& path) {
    const size_t bytes = path.size() * sizeof(WCHAR);
    std::vector<std::byte> memory(sizeof(FILE_RENAME_INFO) + bytes);
    auto* const name = reinterpret_cast<FILE_RENAME_INFO*>(memory.data());
    name->ReplaceIfExists = TRUE;
    name->FileNameLength = static_cast<DWORD>(bytes);
    std::memcpy(name->FileName, path.data(), bytes);
    SetFileInformationByHandle(handle_, FileRenameInfo, name, static_cast<DWORD>(memory.size()));
}
