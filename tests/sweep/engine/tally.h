// What a sweep has done and found, added up.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>

#include "tests/sweep/engine/findings.h"

namespace sweep {

struct OperationTally {
    uint64_t machines = 0;  // PCs, with either behaviour of the active flag
    uint64_t calls = 0;     // platform calls of the undisturbed runs
    uint64_t faults = 0;    // those with each result and way
    uint64_t runs = 0;      // faults that were run
    uint64_t breaches = 0;

    bool operator==(const OperationTally&) const = default;
};

struct Found {
    uint64_t times = 0;
    std::string example;  // PC, operation and faults of one

    bool operator==(const Found&) const = default;
};

class Tally {
  public:
    OperationTally& Of(const Task& task) { return operations_[task.operation->name]; }
    void Add(const Finding& finding, const std::string& example);
    void Add(const Tally& other);

    const std::map<std::string, OperationTally>& Operations() const { return operations_; }
    const std::map<Row, Found>& Rows(Table table) const;
    OperationTally Total() const;

    // From one process to another: lines of fields with tabs between them.
    void Write(std::ostream& out) const;
    void AddWritten(std::istream& in);

    bool operator==(const Tally&) const = default;

  private:
    std::map<std::string, OperationTally> operations_;
    std::map<Table, std::map<Row, Found>> found_;
};

}  // namespace sweep
