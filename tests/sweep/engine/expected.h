// The tables that a sweep is compared with: what is prescribed although it breaks a rule, how every result is
// recorded, and which failing calls the log does not name.
#pragma once

#include <string>
#include <vector>

#include "tests/sweep/engine/tally.h"

namespace sweep {

struct ExpectedRow {
    Row fields;          // "*" is for every text, "a|b" for a and b
    std::string reason;  // why a breach is prescribed
    size_t line = 0;
};

class Expected {
  public:
    // Reads the tables in a folder. Throws std::runtime_error with file and line.
    explicit Expected(const std::string& folder);

    // A line for each found row that no table has; with `whole`, also for each row of a table that was not
    // found.
    std::vector<std::string> Compare(const Tally& tally, bool whole) const;

    // Writes what was found as the tables, with the reasons that there are. Rows that are not found any more
    // go.
    void Record(const Tally& tally) const;

  private:
    struct File {
        std::string path;
        std::string head;  // the comments at its beginning
        std::vector<ExpectedRow> rows;
    };
    std::map<Table, File> files_;
};

}  // namespace sweep
