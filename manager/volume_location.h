// Where the volume behind a drive letter lies, as the volume itself tells.
#pragma once

#include "platform/windows_api.h"

// Whether the letter is a fixed drive whose volume lies, on one extent, on that partition of that disk. A
// volume that cannot be opened or spans several extents is not. The handle is closed on every path.
bool IsLetterOfPartition(WCHAR letter, int disk, int partition);
