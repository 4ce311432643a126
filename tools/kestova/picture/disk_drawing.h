// A disk drawn to scale, as SVG for a page.
#pragma once

#include <string>

#include "tools/kestova/picture/pieces.h"

// Each piece is as wide as its share of the disk, but at least so wide that it can be seen. With a title and
// a description for those who do not see it.
std::string DiskDrawing(const DiskReport& disk);
