// What is at a path of a volume: a file, or a folder with what is in it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/kestova/common/progress.h"
#include "tools/kestova/operations/session.h"
#include "tools/kestova/pc/volume_place.h"

// A path as the user names it.
struct FilePlace {
    VolumePlace volume = {};
    bool isOnInternalDisk = false;  // its disk is the internal one, which the library knows
    std::string volumeText = {};    // "C:", "2:", "1.2:"
    std::string path = {};          // below the volume's root, with backslashes
};

struct ListedFile {
    machine::FileEntry entry = {};
    std::optional<std::string> sha256 = {};
};

struct FilesReport {
    FilePlace place = {};
    bool isFolder = false;
    FoundVolume volume = {};
    bool hasHashes = false;
    std::vector<ListedFile> files = {};  // by name, without regard to case
    std::string problem = {};            // which files cannot be read; else empty
};

// `hash` reads every file that is listed, and shows how far it is there. Throws Failed, with the reason, if
// there is no such path, or the volume cannot be read.
FilesReport ReadFiles(Session& session, const FilePlace& place, bool hash, const ProgressPlace& shown);
