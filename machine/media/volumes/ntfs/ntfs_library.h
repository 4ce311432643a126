// The headers of libntfs-3g. They are C headers without linkage of their own that define macros `min` and
// `max` and a type BOOL: a source that includes them must not include the platform's headers.
#pragma once

// What they need without including it.
#include <sys/stat.h>

#include <cstdarg>
#include <ctime>

extern "C" {
#include <ntfs-3g/attrib.h>
#include <ntfs-3g/device.h>
#include <ntfs-3g/dir.h>
#include <ntfs-3g/inode.h>
#include <ntfs-3g/layout.h>
#include <ntfs-3g/logfile.h>
#include <ntfs-3g/logging.h>
#include <ntfs-3g/types.h>
#include <ntfs-3g/unistr.h>
#include <ntfs-3g/volume.h>
}
#undef min
#undef max
