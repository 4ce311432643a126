// The tables that a sweep is compared with: what is prescribed although it breaks a rule, how every result is
// recorded, and which failing calls the log does not name.
#pragma once

#include <string>
#include <vector>

#include "tests/sweep/engine/expected_rows.h"
#include "tests/sweep/engine/tally.h"

namespace sweep {

class Expected {
  public:
    // Reads the tables in a folder. Throws std::runtime_error with file and line.
    explicit Expected(const std::string& folder);

    // A line for each found row that no table has; with `whole`, also for each row of a table that was not
    // found.
    std::vector<std::string> Compare(const Tally& tally, bool whole) const;

    // Writes what was found as the tables; rows that are not found any more go. The outline of breaches keeps
    // all that it has, and gets those that it lacks, with an example in place of a reason.
    void Record(const Tally& tally) const;

  private:
    struct File {
        std::string path;
        std::string kept;  // by Record: the comments at its beginning, and the outline
        std::vector<ExpectedRow> rows;
    };
    std::map<Table, File> files_;
};

}  // namespace sweep
