#include <sys/ioctl.h>
#include <unistd.h>

#include "tools/kestova/common/terminal.h"

namespace {

Terminal TerminalAt(int descriptor) {
    if (isatty(descriptor) == 0) return {};
    winsize size = {};
    const bool isKnown = ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    return {.columns = isKnown ? size.ws_col : ColumnsOfEnvironment(),
            .showsColour = AllowsColour(),
            .isRewritten = !IsDumbTerminal()};
}

}  // namespace

Terminal StandardOutput() {
    return TerminalAt(STDOUT_FILENO);
}

Terminal StandardError() {
    return TerminalAt(STDERR_FILENO);
}

bool CanAsk() {
    return isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0;
}
