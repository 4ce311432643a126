// The interface to the medium of a disk: what is changed on it is collected until it is committed.
#pragma once

#include <string>
#include <vector>

namespace machine {

class Medium {
  public:
    Medium() = default;
    virtual ~Medium() = default;
    Medium(const Medium&) = delete;
    Medium& operator=(const Medium&) = delete;

    // Writes what was changed since the last commit: all of it, or nothing that stays. Returns what is wrong,
    // empty if nothing is. After a failure nothing more is written, and every further call returns the same.
    virtual std::string Commit() = 0;
    // What forbids the change that was tried since the medium was opened: a volume in a condition in which it
    // must not be changed, with what helps. Empty if nothing does.
    virtual std::string WhyBarred() const = 0;
    // The file with which the changes since the medium was opened can be taken back. Empty if there is none.
    virtual std::string Backup() const = 0;
    // What the user should know about the state in which the medium was found, each with its name in front.
    virtual const std::vector<std::string>& Notes() const = 0;
};

}  // namespace machine
