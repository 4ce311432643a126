// What became of a change of a disk image that was to be taken back.
#pragma once

#include <string>

struct UndoReport {
    std::string image;
    std::string file;       // the backup
    bool isUndone = false;  // false if it was taken back already
    bool isDryRun = false;
    std::string backup = {};  // with which this can be taken back; empty if there is none
};
