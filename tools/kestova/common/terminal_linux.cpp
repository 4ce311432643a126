#include <sys/ioctl.h>
#include <unistd.h>

#include "tools/kestova/common/terminal.h"

Terminal StandardOutput() {
    if (isatty(STDOUT_FILENO) == 0) return {};
    winsize size = {};
    const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    return {.columns = isKnown ? size.ws_col : ColumnsOfEnvironment(), .showsColour = AllowsColour()};
}

bool RewritesErrors() {
    return isatty(STDERR_FILENO) != 0 && !IsDumbTerminal();
}

bool CanAsk() {
    return isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0;
}
