#include "machine/media/image/image_file.h"

#include <signal.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "machine/media/device/open_device.h"
#include "machine/media/device/shell_word.h"

namespace machine {

namespace {

// While it exists, no signal ends this program, nor does a limit of its files' length, which then fails as
// any other write does.
class SignalsWait {
  public:
    SignalsWait() {
        sigset_t all;
        sigfillset(&all);
        sigdelset(&all, SIGXFSZ);  // a signal that is blocked waits, although it is ignored
        sigdelset(&all, SIGSYS);   // of a system call that is refused: it cannot wait
        pthread_sigmask(SIG_SETMASK, &all, &mask_);
        struct sigaction ignored = {};
        ignored.sa_handler = SIG_IGN;
        sigaction(SIGXFSZ, &ignored, &lengthLimit_);
    }
    ~SignalsWait() {
        sigaction(SIGXFSZ, &lengthLimit_, nullptr);
        pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
    }
    SignalsWait(const SignalsWait&) = delete;
    SignalsWait& operator=(const SignalsWait&) = delete;

  private:
    sigset_t mask_ = {};
    struct sigaction lengthLimit_ = {};
};

// The command that ends a change which that journal keeps.
std::string RecoverCommand(const std::string& image, const std::string& journal) {
    const bool isUsual = journal == JournalBeside(image);
    return "kestova --image " + ShellWord(image) + (isUsual ? "" : " --journal " + ShellWord(journal)) +
           " recover";
}

}  // namespace

ImageFile::ImageFile(const std::string& path, const ImageUse& use)
    : ImageFile(OpenDevice(path, use.access == ImageAccess::Write, use.changesDisks), path, use) {}

ImageFile::ImageFile(std::unique_ptr<BlockDevice> device, const std::string& path, const ImageUse& use)
    : path_(path),
      access_(use.access),
      forceDirty_(use.forceDirty),
      sectorSize_(use.sectorSize ? use.sectorSize : device->SectorSize()),
      beforeWriting_(use.beforeWriting),
      device_(std::move(device)),
      journal_(path, use.journal),
      backup_(path, use.backup) {
    if (!Flaw().empty()) {
        if (access_ != ImageAccess::Read) throw Error(Flaw());
        AddNote(Flaw());
    }
    if (access_ == ImageAccess::Write) {
        journal_.CheckPlace();
        backup_.CheckPlace();
    } else if (const std::string user = device_->OtherUser(); !user.empty()) {
        AddNote("in use: " + user + ", and may change what is shown");
    }
    // What was interrupted may be in the usual place, wherever this program keeps its own changes.
    Settle(ChangeJournal(path, {}));
    if (use.journal.kind == JournalPlace::Kind::Named) Settle(journal_);
}

bool ImageFile::Read(uint64_t offset, void* buffer, size_t length) const {
    if (!device_->Read(offset, buffer, length)) return false;
    if (length == 0) return true;
    // What was changed replaces the bytes of the medium.
    auto* bytes = static_cast<char*>(buffer);
    const uint64_t end = offset + length;
    for (auto block = changed_.lower_bound(offset / blockSize);
         block != changed_.end() && block->first * blockSize < end; ++block) {
        const uint64_t start = block->first * blockSize;
        const uint64_t from = std::max(offset, start);
        const uint64_t to = std::min(end, start + block->second.now.size());
        block->second.now.copy(bytes + (from - offset), to - from, from - start);
    }
    return true;
}

bool ImageFile::Write(uint64_t offset, const void* bytes, size_t length) {
    if (access_ == ImageAccess::Read) return false;
    if (!whyUnwritable_.empty()) {
        Bar(whyUnwritable_);
        return false;
    }
    if (WriteBlocks(offset, static_cast<const char*>(bytes), length)) return true;
    Refuse("cannot be read where it would be changed; nothing was written");
    return false;
}

void ImageFile::Refuse(const std::string& whatIsWrong) {
    if (problem_.empty()) problem_ = path_ + ": " + whatIsWrong;
}

void ImageFile::Bar(const std::string& whatIsWrong) {
    if (barred_.empty()) barred_ = path_ + ": " + whatIsWrong;
    Refuse(whatIsWrong);
}

bool ImageFile::WriteBlocks(uint64_t offset, const char* bytes, size_t length) {
    if (offset > Size() || length > Size() - offset) return false;
    while (length > 0) {
        const uint64_t number = offset / blockSize;
        const size_t within = static_cast<size_t>(offset % blockSize);
        const size_t count = std::min(length, blockSize - within);
        const auto [block, isNew] = changed_.try_emplace(number);
        Block& held = block->second;
        if (isNew) {
            const uint64_t start = number * blockSize;
            held.before.resize(static_cast<size_t>(std::min<uint64_t>(blockSize, Size() - start)));
            if (!device_->Read(start, held.before.data(), held.before.size())) {
                changed_.erase(block);
                return false;
            }
            held.now = held.before;
        }
        held.now.replace(within, count, bytes, count);
        bytes += count;
        offset += count;
        length -= count;
    }
    return true;
}

void ImageFile::Mark(const std::function<void()>& write, const std::function<void()>& undo) {
    const std::map<uint64_t, Block> unmarked = changed_;
    write();
    for (const auto& [number, block] : changed_) {
        const auto known = unmarked.find(number);
        const std::string& plain = known != unmarked.end() ? known->second.now : block.before;
        for (size_t at = 0; at < plain.size(); at += diskSectorSize) {
            if (block.now.compare(at, diskSectorSize, plain, at, diskSectorSize) != 0)
                marks_[number * blockSize + at] = block.now.substr(at, diskSectorSize);
        }
    }
    undo();
    // The marked blocks stay in the change, as they were.
    for (auto& [number, block] : changed_) {
        const auto known = unmarked.find(number);
        block.now = known != unmarked.end() ? known->second.now : block.before;
    }
}

ImageChange ImageFile::Collected() const {
    ImageChange change;
    for (const auto& [number, block] : changed_) {
        for (size_t at = 0; at < block.now.size(); at += diskSectorSize) {
            const uint64_t offset = number * blockSize + at;
            const auto mark = marks_.find(offset);
            const bool isMarked = mark != marks_.end();
            if (!isMarked && block.before.compare(at, diskSectorSize, block.now, at, diskSectorSize) == 0)
                continue;
            AppendRun(change, {.offset = offset,
                               .before = block.before.substr(at, diskSectorSize),
                               .after = block.now.substr(at, diskSectorSize),
                               .mark = isMarked ? mark->second : ""});
        }
    }
    // Marks alone are no change.
    const bool changes = std::any_of(change.begin(), change.end(),
                                     [](const ChangedRun& run) { return run.before != run.after; });
    return changes ? change : ImageChange();
}

std::string ImageFile::Commit() {
    if (access_ != ImageAccess::Write) return "";
    if (problem_.empty()) {
        const ImageChange change = Collected();
        if (!change.empty()) problem_ = Written(change);
    }
    changed_.clear();
    marks_.clear();
    return problem_;
}

ChangeState ImageFile::StateOnDevice(const ImageChange& change) const {
    return StateOfChange([this](uint64_t offset, void* buffer,
                                size_t length) { return device_->Read(offset, buffer, length); },
                         change);
}

std::string ImageFile::Written(const ImageChange& change) {
    beforeWriting_();
    const SignalsWait wait;
    if (StateOnDevice(change) != ChangeState::Before)
        return path_ + ": was changed by another program meanwhile; nothing was written";
    const std::string journalProblem = journal_.Keep(change, Size());
    if (!journalProblem.empty()) return path_ + ": " + journalProblem + "; nothing was written";
    const std::string backupProblem = backup_.Add(change, Size());
    if (!backupProblem.empty()) {
        journal_.Drop();
        return path_ + ": " + backupProblem + "; nothing was written";
    }
    if (WriteChange(*device_, change)) {
        // What is written is complete, with the journal or without it.
        journal_.Drop();
        return "";
    }
    const std::string problem = path_ + ": cannot be written: " + std::strerror(errno);
    if (TakeBackChange(*device_, change)) {
        backup_.TakeBack(Size());
        journal_.Drop();
        return problem + "; what had been written was taken back";
    }
    if (journal_.Path().empty())
        return problem + "; what had been written could not be taken back either: the image is damaged";
    return problem + "; what had been written could not be taken back either: run `" +
           RecoverCommand(path_, journal_.Path()) + "` once the medium can be written";
}

// What a program before this one left half written.
void ImageFile::Settle(const ChangeJournal& journal) {
    const auto change = journal.Pending(Size());
    if (!change) return;
    const ChangeState state = StateOnDevice(*change);
    if (state == ChangeState::Foreign) {
        throw Error("does not fit its journal " + journal.Path() +
                    ": something else has changed it since; move the journal away to go on without it");
    }
    const bool isWhole = state == ChangeState::After;
    recovered_ = isWhole ? Recovery::Finished : Recovery::TakenBack;
    if (access_ != ImageAccess::Write) {
        Show(*change, isWhole ? &ChangedRun::after : &ChangedRun::before);
        AddNote("a change was interrupted; the image is shown as it will be once `" +
                RecoverCommand(path_, journal.Path()) + "` has " +
                (isWhole ? "finished it" : "taken it back"));
        return;
    }
    beforeWriting_();
    const SignalsWait wait;
    if (!(isWhole ? WriteChange(*device_, *change) : TakeBackChange(*device_, *change)) || !journal.Drop()) {
        throw Error(std::string("a change was interrupted, and cannot be ") +
                    (isWhole ? "finished: " : "taken back: ") + std::strerror(errno));
    }
    AddNote(std::string("a change that had been interrupted was ") + (isWhole ? "finished" : "taken back"));
}

void ImageFile::Show(const ImageChange& change, std::string ChangedRun::*part) {
    for (const ChangedRun& run : change)
        WriteBlocks(run.offset, (run.*part).data(), (run.*part).size());
}

bool ImageFile::Holds(uint64_t offset, const std::string& bytes) const {
    std::string found(bytes.size(), '\0');
    return !bytes.empty() && Read(offset, found.data(), found.size()) && found == bytes;
}

ChangeState ImageFile::StateAsShown(const ImageChange& change) const {
    return StateOfChange(
        [this](uint64_t offset, void* buffer, size_t length) { return Read(offset, buffer, length); },
        change);
}

ImageChange ImageFile::MadeOf(const ChangesOfImage& backup) const {
    const ImageChange& first = backup.changes.front();
    const ImageChange& last = backup.changes.back();
    if (backup.changes.size() == 1 || StateAsShown(last) == ChangeState::Before) return first;
    return Joined(first, last);
}

bool ImageFile::Undo(const ImageChange& made) {
    ImageChange change = made;
    // A volume that is marked already, by force, needs no mark of ours, which would be taken away afterwards.
    std::erase_if(change, [&](const ChangedRun& run) {
        return run.before == run.after && Holds(run.offset, run.mark);
    });
    const ChangeState state = StateAsShown(change);
    if (state == ChangeState::Before) return false;
    if (state != ChangeState::After)
        throw Error("does not fit the backup: something else has changed it since; nothing was changed");
    for (const ChangedRun& run : change) {
        if (!run.mark.empty()) {
            Mark([&] { Write(run.offset, run.mark.data(), run.mark.size()); },
                 [&] { Write(run.offset, run.after.data(), run.after.size()); });
        }
        Write(run.offset, run.before.data(), run.before.size());
    }
    return true;
}

ImageError ImageFile::Error(const std::string& whatIsWrong) const {
    return ImageError(path_ + ": " + whatIsWrong);
}

}  // namespace machine
