#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "base/utf.h"
#include "tools/kestova/process/program_start.h"

// In text mode the C runtime writes a line feed as two bytes; its words are in the ANSI code page, which
// lacks most characters.
std::vector<std::string> StartProgram(int, char**) {
    // A drive without a medium would open a box, and wait for somebody to close it.
    SetErrorMode(SEM_FAILCRITICALERRORS);
    for (std::FILE* const stream : {stdin, stdout, stderr})
        _setmode(_fileno(stream), _O_BINARY);
    int count = 0;
    LPWSTR* const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> words;
    for (int i = 1; i < count; ++i)
        words.push_back(ToUtf8(wide[i]));
    LocalFree(wide);
    return words;
}

// Such a write fails with this error, and leaves it.
bool IsOutputAbandoned() {
    return GetLastError() == ERROR_NO_DATA || GetLastError() == ERROR_BROKEN_PIPE;
}
