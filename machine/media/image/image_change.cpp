#include "machine/media/image/image_change.h"

#include <utility>

namespace machine {

namespace {

bool IsMarked(const ChangedRun& run) {
    return !run.mark.empty();
}

// Writes that part of the runs with marks, or of those without, and flushes if there are any.
bool WriteRuns(BlockDevice& device, const ImageChange& change, bool marked, std::string ChangedRun::*part) {
    bool isWritten = false;
    for (const ChangedRun& run : change) {
        if (IsMarked(run) != marked) continue;
        if (!device.Write(run.offset, (run.*part).data(), (run.*part).size())) return false;
        isWritten = true;
    }
    return !isWritten || device.Flush();
}

bool WriteUnderMarks(BlockDevice& device, const ImageChange& change, std::string ChangedRun::*target) {
    return WriteRuns(device, change, true, &ChangedRun::mark) && WriteRuns(device, change, false, target) &&
           WriteRuns(device, change, true, target);
}

bool Holds(const std::string& found, size_t at, const std::string& expected) {
    return !expected.empty() && found.compare(at, diskSectorSize, expected, at, diskSectorSize) == 0;
}

}  // namespace

void AppendRun(ImageChange& change, ChangedRun run) {
    const bool continues = !change.empty() && IsMarked(change.back()) == IsMarked(run) &&
                           change.back().offset + change.back().before.size() == run.offset;
    if (!continues) {
        change.push_back(std::move(run));
        return;
    }
    change.back().before += run.before;
    change.back().after += run.after;
    change.back().mark += run.mark;
}

bool WriteChange(BlockDevice& device, const ImageChange& change) {
    return WriteUnderMarks(device, change, &ChangedRun::after);
}

bool TakeBackChange(BlockDevice& device, const ImageChange& change) {
    return WriteUnderMarks(device, change, &ChangedRun::before);
}

ChangeState StateOfChange(const ReadBytes& read, const ImageChange& change) {
    bool isBefore = true;
    bool isAfter = true;
    for (const ChangedRun& run : change) {
        std::string found(run.before.size(), '\0');
        if (!read(run.offset, found.data(), found.size())) return ChangeState::Foreign;
        for (size_t at = 0; at < found.size(); at += diskSectorSize) {
            const bool holdsBefore = Holds(found, at, run.before);
            const bool holdsAfter = Holds(found, at, run.after);
            if (!holdsBefore && !holdsAfter && !Holds(found, at, run.mark)) return ChangeState::Foreign;
            isBefore = isBefore && holdsBefore;
            isAfter = isAfter && holdsAfter;
        }
    }
    if (isAfter) return ChangeState::After;
    return isBefore ? ChangeState::Before : ChangeState::Between;
}

}  // namespace machine
