#include "platform/windows_api.h"
#include "tools/kestova/common/terminal.h"

// A console shows colours only if it can be made to obey escape sequences.
Terminal StandardOutput() {
    const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    CONSOLE_SCREEN_BUFFER_INFO buffer = {};
    if (!GetConsoleMode(console, &mode) || !GetConsoleScreenBufferInfo(console, &buffer)) return {};
    constexpr DWORD obeysSequences = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
    const bool showsColour = AllowsColour() && SetConsoleMode(console, mode | obeysSequences);
    return {.columns = static_cast<size_t>(buffer.srWindow.Right - buffer.srWindow.Left + 1),
            .showsColour = showsColour};
}

// Nothing is shown there that would have to fit.
Terminal StandardError() {
    return {};
}

bool CanAsk() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) &&
           GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode);
}
