#include "c/start.h"

void c_interface::EnsureSystem() {}
