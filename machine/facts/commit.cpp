#include "machine/facts/commit.h"

namespace machine {

std::string CommitMedia(const Pc& pc) {
    std::string problem;
    for (const Disk& disk : pc.disks) {
        const std::string found = disk.medium ? disk.medium->Commit() : "";
        if (problem.empty()) problem = found;
    }
    return problem;
}

}  // namespace machine
