// Windows is the platform; there is nothing to open.

#include "examples/open_pc.h"

struct OpenedPc::Inside {};

OpenedPc::OpenedPc(const std::string&) {}

OpenedPc::~OpenedPc() = default;
