// What was wrong with the partition table of a disk image, and whether it was repaired.
#pragma once

#include <string>
#include <vector>

struct TableRepairReport {
    std::string image;
    std::vector<std::string> problems;  // empty if nothing was wrong
    bool isRepaired = false;            // false in a dry run too
    std::string backup = {};            // with which it can be taken back; empty if there is none
};
