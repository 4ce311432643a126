// Changes of an image are whole or not there: after a power cut at any write, a failing medium, a journal
// that cannot be written or does not fit.
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>

#include <fstream>

#include "machine/facts/partition_table.h"
#include "machine/media/device/file_device.h"
#include "machine/media/table/image_table.h"
#include "machine/media/volumes/ntfs/ntfs_volume.h"
#include "tests/machine/media/image_fixture.h"
#include "tests/machine/media/recording_device.h"

namespace machine {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr uint64_t recovery = 1 * MiB;
constexpr const char* record = "[System]\r\nActive=2\r\n";

class Transaction : public ImageTest {
  protected:
    std::shared_ptr<ImageFile> OpenRecorded() {
        return std::make_shared<ImageFile>(
            std::make_unique<RecordingDevice>(std::make_unique<FileDevice>(image_, true), disk_), image_,
            ImageUse(ImageAccess::Write));
    }

    // What a switch to the recovery partition changes: the record on it, and the flags.
    static void Switch(const std::shared_ptr<ImageFile>& image) {
        EXPECT_EQ(NtfsVolume(image, recovery, 60 * MiB).Write("SystemVolume.ini", record), 0u);
        EXPECT_EQ(ImageTable(image, PartitionStyle::Mbr).SetActive(recovery, true, OtherFlags::Clear), 0u);
    }

    bool IsConsistent() {
        return StatusOf("ntfsfix --no-action '" + PartitionFile(image_, 1, 60) + "' >/dev/null") == 0;
    }
    bool HasJournal() const { return std::filesystem::exists(Journal()); }
    std::string Journal() const { return image_ + ".kestova-journal"; }

    std::string original_ = FactoryMbrImage("original.img");
    std::string image_ = FactoryMbrImage("changed.img");
    std::shared_ptr<DiskRecord> disk_ = std::make_shared<DiskRecord>();
};

// The active partitions and the record, as a program that opens the image finds them.
struct Found {
    std::vector<uint64_t> active;
    std::string record;

    bool operator==(const Found&) const = default;
};

void PrintTo(const Found& found, std::ostream* out) {
    *out << testing::PrintToString(found.active) << " " << testing::PrintToString(found.record);
}

const Found before = {{61 * MiB}, ""};
const Found after = {{recovery}, record};

Found FoundOn(const Disk& disk) {
    Found found;
    for (const Partition& partition : disk.partitions) {
        if (partition.bootIndicator != 0) found.active.push_back(partition.offset);
    }
    disk.partitions[0].volume->store->Read("SystemVolume.ini", found.record);
    return found;
}

TEST_F(Transaction, FactoryMbr_Switch_IsWrittenAtTheCommit) {
    const auto image = OpenRecorded();
    Switch(image);
    EXPECT_TRUE(AreSame(original_, image_));

    EXPECT_EQ(image->Commit(), "");

    EXPECT_EQ(FoundOn(Attach(image_)), after);
    EXPECT_TRUE(IsConsistent());
    EXPECT_FALSE(HasJournal());
}

TEST_F(Transaction, FactoryMbr_Switch_IsMarkedDirtyWhileItIsWritten) {
    const auto image = OpenRecorded();
    Switch(image);
    image->Commit();

    const std::vector<DiskWrite>& writes = disk_->writes;
    const auto firstFlush =
        std::find_if(writes.begin(), writes.end(), [](const DiskWrite& write) { return write.IsFlush(); });
    ASSERT_NE(firstFlush, writes.end());
    const std::string table = ContentOf(image_);
    // The marks are written first, and as they were at last.
    for (auto mark = writes.begin(); mark != firstFlush; ++mark)
        EXPECT_NE(table.compare(mark->offset, mark->bytes.size(), mark->bytes), 0) << mark->offset;
    EXPECT_EQ(
        std::count_if(writes.begin(), writes.end(), [](const DiskWrite& write) { return write.IsFlush(); }),
        3);
    EXPECT_TRUE(writes.back().IsFlush());
}

TEST_F(Transaction, NothingChanged_Commit_WritesNothing) {
    const auto image = OpenRecorded();
    EXPECT_EQ(ImageTable(image, PartitionStyle::Mbr).SetActive(61 * MiB, true, OtherFlags::Clear), 0u);
    EXPECT_EQ(NtfsVolume(image, recovery, 60 * MiB).Remove("nope"), 2u);

    EXPECT_EQ(image->Commit(), "");

    EXPECT_TRUE(disk_->writes.empty());
}

// --- power cuts ---

// The states in which a power cut can leave the disk: all writes up to a flush are there; of those behind it,
// as many as were made, or any single one is missing, or is there alone or in its first half.
class PowerCuts : public Transaction {
  protected:
    void SetUp() override {
        Transaction::SetUp();
        const auto image = OpenRecorded();
        Switch(image);
        ImageChangeIsKept(image);
        CopySparse(original_, image_);
    }

    // Lets the last flush fail, after which nothing can be written: the journal stays.
    void ImageChangeIsKept(const std::shared_ptr<ImageFile>& image) {
        const auto whole = std::make_shared<DiskRecord>();
        {
            CopySparse(original_, original_ + ".whole");
            const auto other = std::make_shared<ImageFile>(
                std::make_unique<RecordingDevice>(std::make_unique<FileDevice>(original_ + ".whole", true),
                                                  whole),
                original_ + ".whole", ImageUse(ImageAccess::Write));
            Switch(other);
            EXPECT_EQ(other->Commit(), "");
        }
        disk_->failsFrom = whole->writes.size() - 1;
        EXPECT_THAT(image->Commit(), HasSubstr(" recover`"));
        writes_.assign(disk_->writes.begin(),
                       disk_->writes.begin() + static_cast<std::ptrdiff_t>(whole->writes.size()));
        ASSERT_TRUE(HasJournal());
        journal_ = ContentOf(Journal());
    }

    void Put(const DiskWrite& write, size_t length) {
        std::fstream stream(image_, std::ios::in | std::ios::out | std::ios::binary);
        stream.seekp(static_cast<std::streamoff>(write.offset));
        stream.write(write.bytes.data(), static_cast<std::streamsize>(length));
    }

    // The state in which the writes of that choice are on the disk is shown whole, and put in order.
    void Expect(const std::vector<size_t>& chosen, bool lastIsTorn) {
        SCOPED_TRACE("writes " + testing::PrintToString(chosen) + (lastIsTorn ? ", the last one torn" : ""));
        for (const size_t number : chosen) {
            const bool isTorn = lastIsTorn && number == chosen.back();
            Put(writes_[number],
                isTorn ? writes_[number].bytes.size() / 1024 * 512 : writes_[number].bytes.size());
        }
        std::ofstream(Journal(), std::ios::binary) << journal_;

        const Found shown = FoundOn(Attach(image_));
        EXPECT_TRUE(shown == before || shown == after) << testing::PrintToString(shown);
        EXPECT_NE(RecoverImage(image_, ImageAccess::Write), Recovery::None);
        EXPECT_FALSE(HasJournal());
        EXPECT_EQ(FoundOn(Attach(image_)), shown);
        EXPECT_TRUE(shown == after || AreSame(original_, image_));
        Attach(image_, ImageAccess::Write);
        for (const DiskWrite& write : writes_) {
            std::string old(write.bytes.size(), '\0');
            std::ifstream stream(original_, std::ios::binary);
            stream.seekg(static_cast<std::streamoff>(write.offset));
            stream.read(old.data(), static_cast<std::streamsize>(old.size()));
            Put({write.offset, old}, old.size());
        }
    }

    std::vector<DiskWrite> writes_;
    std::string journal_;
};

TEST_F(PowerCuts, AfterAnyWrite_Recover_LeavesAllOrNothing) {
    std::vector<size_t> flushed;
    std::vector<size_t> pending;
    int states = 0;
    const auto expect = [&](std::vector<size_t> more, bool torn) {
        std::vector<size_t> chosen = flushed;
        chosen.insert(chosen.end(), more.begin(), more.end());
        Expect(chosen, torn && !more.empty());
        ++states;
    };
    expect({}, false);
    for (size_t number = 0; number < writes_.size(); ++number) {
        if (writes_[number].IsFlush()) {
            for (const size_t missing : pending) {
                std::vector<size_t> others = pending;
                std::erase(others, missing);
                expect(others, false);
            }
            flushed.insert(flushed.end(), pending.begin(), pending.end());
            pending.clear();
            continue;
        }
        pending.push_back(number);
        expect(pending, false);
        expect({number}, false);
        if (writes_[number].bytes.size() > 512) expect({number}, true);
    }
    EXPECT_GT(states, 20);
    RecordProperty("states", states);
}

// --- a failing medium ---

TEST_F(Transaction, AnyWriteFails_Commit_TakesBackAndFailsFromThereOn) {
    const auto whole = std::make_shared<DiskRecord>();
    for (size_t number = 0; number == 0 || number < whole->writes.size(); ++number) {
        SCOPED_TRACE("write " + std::to_string(number));
        disk_ = std::make_shared<DiskRecord>();
        disk_->failsFrom = number;
        disk_->failsBelow = number + 1;
        const auto image = OpenRecorded();
        Switch(image);

        const std::string problem = image->Commit();

        EXPECT_EQ(problem,
                  image_ + ": cannot be written: Input/output error; what had been written was taken back");
        EXPECT_EQ(image->Commit(), problem);
        EXPECT_TRUE(AreSame(original_, image_));
        EXPECT_FALSE(HasJournal());
        if (number == 0) {
            const auto other = std::make_shared<ImageFile>(
                std::make_unique<RecordingDevice>(std::make_unique<FileDevice>(original_, false), whole),
                original_, ImageUse(ImageAccess::Write));
            Switch(other);
            other->Commit();
            *whole = {.writes = whole->writes};
        }
    }
}

// While it exists, no file can be made longer.
class LengthLimit {
  public:
    explicit LengthLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~LengthLimit() { setrlimit(RLIMIT_FSIZE, &before_); }

  private:
    rlimit before_ = {};
};

TEST_F(Transaction, NoRoomForTheJournal_Commit_WritesNothing) {
    const auto image = OpenRecorded();
    Switch(image);
    std::string problem;
    {
        const LengthLimit limit(100);
        problem = image->Commit();
    }

    EXPECT_EQ(problem, image_ + ": its journal " + Journal() +
                           " cannot be written: File too large; nothing was written");
    EXPECT_TRUE(AreSame(original_, image_));
    EXPECT_FALSE(HasJournal());
}

TEST_F(Transaction, ImageWrittenByAnother_Commit_WritesNothing) {
    const auto image = OpenRecorded();
    Switch(image);
    PatchByte(image_, 440, 0x99);

    EXPECT_EQ(image->Commit(), image_ + ": was changed by another program meanwhile; nothing was written");

    EXPECT_TRUE(disk_->writes.empty());
    EXPECT_FALSE(HasJournal());
}

// --- backups ---

class Backups : public Transaction {
  protected:
    std::shared_ptr<ImageFile> OpenWith(const JournalPlace& backup, const JournalPlace& journal = {}) {
        ImageUse use(ImageAccess::Write, journal);
        use.backup = backup;
        return std::make_shared<ImageFile>(
            std::make_unique<RecordingDevice>(std::make_unique<FileDevice>(image_, true), disk_), image_,
            use);
    }
    std::string Backup(int number) const { return image_ + ".kestova-backup-" + std::to_string(number); }
    // Takes back what the file holds.
    void Undo(const std::string& backup) {
        const auto image = std::make_shared<ImageFile>(image_, ImageAccess::Write);
        EXPECT_TRUE(image->Undo(image->MadeOf(ReadBackup(backup))));
        EXPECT_EQ(image->Commit(), "");
    }
};

TEST_F(Backups, TwoCommits_Undo_TakesBackBoth) {
    std::string backup;
    {
        const auto image = OpenWith({});
        Switch(image);
        EXPECT_EQ(image->Backup(), "");
        EXPECT_EQ(image->Commit(), "");
        EXPECT_EQ(NtfsVolume(image, recovery, 60 * MiB).Remove("SystemVolume.ini"), 0u);
        EXPECT_EQ(image->Commit(), "");
        backup = image->Backup();
    }
    EXPECT_EQ(backup, Backup(1));

    Undo(backup);

    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(Backups, BackupsOfEarlierChanges_Commit_TakesTheNextName) {
    std::ofstream(Backup(1)) << "kept";
    std::ofstream(Backup(2)) << "kept";
    const auto image = OpenWith({});
    Switch(image);

    EXPECT_EQ(image->Commit(), "");

    EXPECT_EQ(image->Backup(), Backup(3));
    EXPECT_EQ(ContentOf(Backup(1)), "kept");
}

TEST_F(Backups, FirstCommitFails_LeavesNone) {
    disk_->failsFrom = 2;
    disk_->failsBelow = 3;
    const auto image = OpenWith({});
    Switch(image);

    EXPECT_NE(image->Commit(), "");

    EXPECT_EQ(image->Backup(), "");
    EXPECT_FALSE(std::filesystem::exists(Backup(1)));
}

TEST_F(Backups, SecondCommitFails_Undo_TakesBackTheFirst) {
    {
        const auto image = OpenWith({});
        Switch(image);
        EXPECT_EQ(image->Commit(), "");
        disk_->failsFrom = disk_->writes.size();
        disk_->failsBelow = disk_->failsFrom + 1;
        EXPECT_EQ(NtfsVolume(image, recovery, 60 * MiB).Remove("SystemVolume.ini"), 0u);
        EXPECT_NE(image->Commit(), "");
        EXPECT_EQ(image->Backup(), Backup(1));
    }
    EXPECT_EQ(FoundOn(Attach(image_)), after);

    Undo(Backup(1));

    EXPECT_TRUE(AreSame(original_, image_));
}

// The next start has taken back what there was of the second.
TEST_F(Backups, KilledAtTheSecondCommit_Undo_TakesBackTheFirst) {
    const std::string switched = image_ + ".switched";
    {
        const auto image = OpenWith({});
        Switch(image);
        EXPECT_EQ(image->Commit(), "");
        OutputOf("cp --sparse=always '" + image_ + "' '" + switched + "'");
        EXPECT_EQ(NtfsVolume(image, recovery, 60 * MiB).Remove("SystemVolume.ini"), 0u);
        EXPECT_EQ(image->Commit(), "");
    }
    std::filesystem::rename(switched, image_);

    Undo(Backup(1));

    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(Backups, SectorsOutOfOrderOrTwice_Read_IsRefused) {
    const std::string sector(512, 'a');
    for (const uint64_t second : {uint64_t{0}, uint64_t{512}, uint64_t{1024}}) {
        const ImageChange change = {{512, sector, sector}, {second, sector, sector}};
        ASSERT_TRUE(WriteChangeFile(Backup(1), backupMagic, {1 * MiB, {change}}));
        if (second == 1024) {
            EXPECT_EQ(ReadBackup(Backup(1)).changes.size(), 1u);
        } else {
            EXPECT_THROW(ReadBackup(Backup(1)), ImageError) << second;
        }
    }
}

// In a shared folder, anybody can have put a link there.
TEST_F(Backups, LinkOfTheNameBeforeItIsComplete_Commit_DoesNotFollowIt) {
    std::ofstream(image_ + ".other") << "kept";
    std::filesystem::create_symlink(image_ + ".other", Backup(1) + ".new");
    const auto image = OpenWith({});
    Switch(image);

    EXPECT_EQ(image->Commit(), "");

    EXPECT_EQ(ContentOf(image_ + ".other"), "kept");
    EXPECT_EQ(ReadBackup(Backup(1)).changes.size(), 1u);
}

TEST_F(Backups, NoRoom_Commit_WritesNothing) {
    const auto image = OpenWith({}, {JournalPlace::Kind::None});
    Switch(image);
    std::string problem;
    {
        const LengthLimit limit(100);
        problem = image->Commit();
    }

    EXPECT_EQ(problem, image_ + ": its backup " + Backup(1) +
                           " cannot be written: File too large; nothing was written");
    EXPECT_TRUE(AreSame(original_, image_));
    EXPECT_EQ(image->Backup(), "");
    EXPECT_FALSE(std::filesystem::exists(Backup(1)));
}

TEST_F(Backups, NoRoomForTheSecond_Commit_KeepsTheBackupOfTheFirst) {
    {
        const auto image = OpenWith({}, {JournalPlace::Kind::None});
        Switch(image);
        EXPECT_EQ(image->Commit(), "");
        EXPECT_EQ(NtfsVolume(image, recovery, 60 * MiB).Remove("SystemVolume.ini"), 0u);
        const LengthLimit limit(100);
        EXPECT_THAT(image->Commit(), HasSubstr("its backup " + Backup(1) + " cannot be written"));
        EXPECT_EQ(image->Backup(), Backup(1));
    }

    Undo(Backup(1));

    EXPECT_TRUE(AreSame(original_, image_));
}

TEST(BackupName, Backup_ImageOfBackup_IsThatImage) {
    EXPECT_EQ(ImageOfBackup("folder/disk.img.kestova-backup-12"), "folder/disk.img");
    EXPECT_EQ(ImageOfBackup("disk.img"), "");
}

// --- journals ---

TEST_F(Transaction, JournalOfAnotherKind_Open_IsRefusedByName) {
    std::ofstream(Journal()) << "a shopping list";

    EXPECT_EQ(Complaint(image_), image_ + ": " + Journal() +
                                     " is no journal, or a damaged one; move it away to go on without it");
    EXPECT_EQ(ContentOf(Journal()), "a shopping list");
}

TEST_F(PowerCuts, JournalDamagedInAnyByte_Open_IsRefused) {
    for (size_t at = 0; at < journal_.size(); at += 97) {
        std::string damaged = journal_;
        damaged[at] = static_cast<char>(damaged[at] ^ 1);
        std::ofstream(Journal(), std::ios::binary) << damaged;
        EXPECT_THAT(Complaint(image_), HasSubstr("is no journal, or a damaged one")) << at;
    }
    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(PowerCuts, ImageChangedSince_Open_IsRefusedAndNothingIsWritten) {
    PatchByte(image_, 440, 0x99);

    EXPECT_EQ(Complaint(image_, ImageAccess::Write),
              image_ + ": does not fit its journal " + Journal() +
                  ": something else has changed it since; move the journal away to go on without it");

    EXPECT_EQ(Differences(original_, image_), 1u);
    EXPECT_TRUE(HasJournal());
}

TEST_F(PowerCuts, Interrupted_OpenToAskOrToChange_SaysWhatBecameOfIt) {
    for (const size_t number : {size_t{0}, size_t{1}})
        Put(writes_[number], writes_[number].bytes.size());

    EXPECT_THAT(
        Attach(image_).medium->Notes(),
        testing::ElementsAre(
            image_ + ": a change was interrupted; the image is shown as it will be once `kestova --image " +
            image_ + " recover` has taken it back"));
    EXPECT_TRUE(HasJournal()) << "who only asks changes nothing";
    EXPECT_THAT(Attach(image_, ImageAccess::Write).medium->Notes(),
                testing::ElementsAre(image_ + ": a change that had been interrupted was taken back"));
    EXPECT_THAT(Attach(image_, ImageAccess::Write).medium->Notes(), testing::IsEmpty());
    EXPECT_TRUE(AreSame(original_, image_));
}

// Why the image cannot be opened for changes with that journal.
std::string WhyRefused(const std::string& image, const std::string& journal) {
    try {
        const ImageFile opened(image, {ImageAccess::Write, {JournalPlace::Kind::Named, journal}});
    } catch (const ImageError& error) {
        return error.what();
    }
    return "";
}

TEST_F(Transaction, VolatilePlaceOfTheJournal_OpenToChange_IsRefused) {
    EXPECT_THAT(WhyRefused(image_, "/dev/shm/kestova-journal"),
                HasSubstr("would not outlive a power cut; name another place with --journal"));
}

TEST_F(Transaction, FolderMissing_OpenToChange_IsRefusedUnlessWithoutJournal) {
    const std::string journal = Folder().string() + "/nope/journal";
    EXPECT_THAT(WhyRefused(image_, journal),
                StartsWith(image_ + ": its journal " + journal + " cannot be written: No such file"));
    const auto image =
        std::make_shared<ImageFile>(image_, ImageUse(ImageAccess::Write, {JournalPlace::Kind::None}));
    Switch(image);
    EXPECT_EQ(image->Commit(), "");
    EXPECT_EQ(FoundOn(Attach(image_)), after);
}

}  // namespace
}  // namespace machine
