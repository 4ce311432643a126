// What the module binding did to the framework's stand-in, and what the stand-in shall fail at.
#pragma once

#include <string>
#include <vector>

#include "tests/diag/framework/stand_in/afxwin.h"

enum class FrameworkFailure { None, WinInit, ExtensionInit, RecordAllocation };

struct FrameworkRecording {
    // In order, each after the module state in which it was made: "host: " or "own: ".
    std::vector<std::string> calls;
    FrameworkFailure failure = FrameworkFailure::None;
};

// The one recording; a test assigns an empty one.
FrameworkRecording& Recording();

// The host application's own state, which is current unless something else was set.
AFX_MODULE_STATE& HostState();
