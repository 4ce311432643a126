// The bytes of a disk image. Changes are collected in memory and written together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "machine/facts/medium.h"
#include "machine/media/device/block_device.h"
#include "machine/media/device/image_access.h"
#include "machine/media/image/change_backup.h"
#include "machine/media/image/change_journal.h"
#include "machine/media/image/image_change.h"

namespace machine {

// What became of a change that was interrupted.
enum class Recovery { None, Finished, TakenBack };

class ImageFile final : public Medium {
  public:
    // Opens the file; for writing, locks it against other writers for the lifetime of this object. A change
    // of it that was interrupted is finished or taken back first; without writing, it is only seen that way,
    // and Notes() says so. Throws ImageError if the file cannot be used, for writing also if its journal
    // cannot.
    ImageFile(const std::string& path, const ImageUse& use);
    // The same on any device; `path` is its name in messages and of its journal.
    ImageFile(std::unique_ptr<BlockDevice> device, const std::string& path, const ImageUse& use);

    const std::string& Path() const { return path_; }
    ImageAccess Access() const { return access_; }
    uint64_t Size() const { return device_->Size(); }  // bytes
    // Why it is not changed, as a whole; empty if it may be.
    std::string Flaw() const { return device_->Flaw(); }
    // What the user or the device says; nothing if neither does.
    std::optional<uint32_t> SectorSize() const { return sectorSize_; }

    // Reads all of the bytes or returns false, also for a range beyond the end of the file.
    bool Read(uint64_t offset, void* buffer, size_t length) const;
    // The same for writing, which is into memory; also false if the image is open for reading only. A failure
    // is reported by Commit too, which then writes nothing.
    bool Write(uint64_t offset, const void* bytes, size_t length);
    // What `write` writes marks a file system as being changed: it is on the medium while the other changes
    // are being written, and never before or afterwards. What `undo`, called next, writes is dropped.
    void Mark(const std::function<void()>& write, const std::function<void()>& undo);

    // Commit writes nothing any more, and returns what is wrong.
    void Refuse(const std::string& whatIsWrong);
    // The same for a change of something that is in no condition to be changed.
    void Bar(const std::string& whatIsWrong);
    // Bars every write from here on.
    void BarWrites(const std::string& whatIsWrong) { whyUnwritable_ = whatIsWrong; }
    // Whether the user takes responsibility for a volume that is marked dirty.
    bool ForcesDirty() const { return forceDirty_; }

    std::string Commit() override;
    std::string WhyBarred() const override { return barred_; }
    std::string Backup() const override { return backup_.Path(); }
    // The change that was made of those that a backup of this image holds.
    ImageChange MadeOf(const ChangesOfImage& backup) const;
    // Takes that back, by a change of its own. False if it was taken back already. Throws ImageError, with
    // nothing changed, if something else has changed the image since.
    bool Undo(const ImageChange& made);
    const std::vector<std::string>& Notes() const override { return notes_; }
    void AddNote(const std::string& sentence) { notes_.push_back(path_ + ": " + sentence); }
    // What was found when the file was opened.
    Recovery Recovered() const { return recovered_; }

    // An error with the name of this file.
    ImageError Error(const std::string& whatIsWrong) const;

  private:
    static constexpr size_t blockSize = 4096;
    struct Block {
        std::string before;
        std::string now;
    };

    void Settle(const ChangeJournal& journal);
    void Show(const ImageChange& change, std::string ChangedRun::*part);
    ImageChange Collected() const;
    ChangeState StateOnDevice(const ImageChange& change) const;
    ChangeState StateAsShown(const ImageChange& change) const;
    bool Holds(uint64_t offset, const std::string& bytes) const;
    std::string Written(const ImageChange& change);
    bool WriteBlocks(uint64_t offset, const char* bytes, size_t length);

    std::string path_;
    ImageAccess access_;
    bool forceDirty_;
    std::optional<uint32_t> sectorSize_;
    std::function<void()> beforeWriting_;
    std::unique_ptr<BlockDevice> device_;
    ChangeJournal journal_;
    ChangeBackup backup_;
    std::map<uint64_t, Block> changed_;      // by number
    std::map<uint64_t, std::string> marks_;  // sectors by offset
    std::string problem_;                    // of an earlier write or commit
    std::string barred_;
    std::string whyUnwritable_;
    std::vector<std::string> notes_;
    Recovery recovered_ = Recovery::None;
};

}  // namespace machine
