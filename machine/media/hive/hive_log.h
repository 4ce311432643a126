// The transaction logs of a registry hive. While Windows runs, changes are written to a log first, and to the
// hive later; a hive that was not closed is complete only with its logs.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace machine {

// Whether the hive holds all changes, as far as its header says.
bool IsClosed(const std::string& hive);

struct HiveReplay {
    bool isApplied = false;      // at least one change was
    std::string unapplied = {};  // why not all logs were applied: "there are none"; empty if all were
};

// Applies the logs to a hive that is not closed, as Windows does when it loads the hive. `logs` are the
// contents of the log files, empty for one that does not exist; an earlier one is preferred.
//
// Entries are applied in the order of their numbers, from the number of the hive's last completed change on,
// whichever log they are in, up to the first that is missing or damaged. A log of Windows 8 and earlier has
// no entries: it is applied whole, and only to the hive that it was written for. Afterwards the hive is
// closed if something was applied, and otherwise unchanged.
HiveReplay ReplayLogs(std::string& hive, const std::vector<std::string>& logs);

}  // namespace machine
