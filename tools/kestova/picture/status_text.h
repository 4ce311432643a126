// The status of a PC as text for people: what it is, then each disk with its partitions and free space.
#pragma once

#include <string>

#include "tools/kestova/common/terminal.h"
#include "tools/kestova/reports/status.h"

// How the user wants it.
struct StatusLook {
    bool inBytes = false;
    bool tablesOnly = false;
    std::string columns = {};  // names; empty: the usual ones
    Terminal terminal = {};
};

// Remark and problem are left out: they belong on standard error. Throws WrongUse for an unknown column.
std::string StatusText(const StatusReport& status, const StatusLook& look);

// The rows of the table that the report begins with.
std::vector<std::vector<std::string>> HeadRows(const StatusReport& status);

// What a disk is, apart from its number: size, style, bus and model.
std::string DiskWords(const DiskReport& disk, bool inBytes);

// "internal: SATA", "not internal: USB is not ATA, RAID or SATA".
std::string InternalWords(const DiskReport& disk);
