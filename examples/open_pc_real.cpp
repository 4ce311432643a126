// Windows answers for itself.

#include "examples/open_pc.h"

struct OpenedPc::Inside {};

OpenedPc::OpenedPc(const std::string&) {}

OpenedPc::~OpenedPc() = default;
