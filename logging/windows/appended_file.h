// A file on disk that lines are appended to.
#pragma once

#include <string>

#include "platform/windows_api.h"

// An open plain file (IsPlainFile), looked at through the handle, so that nobody can exchange it between the
// look and the write. Everything else counts as not opened.
class AppendedFile {
  public:
    enum class Use { Append, Rename };
    // To append, a missing file is made. The system places every write at the end of the file, whatever other
    // programs write.
    AppendedFile(const std::basic_string<WCHAR>& path, Use use);
    ~AppendedFile();
    AppendedFile(const AppendedFile&) = delete;
    AppendedFile& operator=(const AppendedFile&) = delete;

    bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    // The bytes that it had when it was opened.
    ULONGLONG Size() const { return size_; }
    void Append(const std::string& line);
    // Replaces the file of that name.
    void RenameTo(const std::basic_string<WCHAR>& path);

  private:
    HANDLE handle_;
    ULONGLONG size_;
};
