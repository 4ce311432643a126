// The PC that a command works on: an emulated one, or the PC that the program runs on. Commands use both the
// same way.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/kestova/common/output_file.h"
#include "tools/kestova/pc/disk_facts.h"
#include "tools/kestova/pc/trace.h"
#include "tools/kestova/pc/volume_place.h"

// The options that choose and prepare a PC.
struct PcChoice {
    std::vector<std::string> images;  // disk 0, 1, ...
    std::vector<std::string> discs;   // images in optical drives
    std::vector<std::string> sticks;  // images in removable drives
    std::string pc;                   // name of a machine that comes with the tool, or a description file
    std::string captured;             // the description that a PC was captured as, instead of a name
    bool windows = false;             // an installed Windows is running
    bool windowsPe = false;           // Windows PE is running
    bool dryRun = false;
    std::string journal;  // file for the journal of the only image; empty: beside each image
    bool noJournal = false;
    std::string backup;  // file for the backup of what changes on the only image; empty: beside each image
    bool noBackup = false;
    bool forceDirty = false;  // NTFS volumes of images that are merely marked dirty are changed too
    std::string sectorSize;   // of the images' tables, in bytes; empty: as the table shows
    bool yes = false;         // disks of this computer may be changed without a question
    bool trace = false;
    std::string record;  // file for a recording of the platform calls
    bool ledger = false;
    std::vector<std::string> faults;  // NAME[#N][+]=CODE
    std::string save;                 // description file to write afterwards
};

// Rehearse: changes are made in memory, and none of them is written.
enum class Access { Ask, Rehearse, Change };

// A description is small; a larger file is some other file.
inline constexpr size_t largestDescription = size_t{16} << 20;

// Whether a machine of that name comes with the tool.
bool IsMachine(std::string_view name);

// Whether the text describes a PC.
bool IsDescription(const std::string& text);

// The JSON Schema of a description.
std::string DescriptionSchema();

// The files that a PC is read from.
struct InputFiles {
    std::string description;  // empty without one
    std::vector<std::string> images;
    uint64_t imageBytes = 0;            // of the disks and media in them together
    bool haveDisks = false;             // of this computer, among the images
    std::vector<std::string> journals;  // the usual ones of the images, whether they exist or not
    std::vector<std::string> backups;   // those that are made beside the images
};

// A fault of the choice, how many calls failed for it, and how many of that name there were.
struct FaultCount {
    std::string fault;
    int met = 0;
    uint32_t calls = 0;
};

// Windows numbers disks from 0; more of them are not looked for.
inline constexpr int mostDisks = 128;

// During its lifetime the platform calls of the library and of this program go to this PC, and the library is
// loaded as by a program loader.
class OpenedPc {
  public:
    OpenedPc() = default;
    virtual ~OpenedPc() = default;
    OpenedPc(const OpenedPc&) = delete;
    OpenedPc& operator=(const OpenedPc&) = delete;

    // What the user should know about the choice, and about the state of what was chosen.
    virtual std::vector<std::string> Notes() const = 0;
    // The same of what was found during the work.
    virtual std::vector<std::string> LaterNotes() const = 0;
    // As its description has it; empty without one.
    virtual std::string Name() const = 0;
    virtual InputFiles Inputs() const = 0;
    // The options that choose this PC, as they are typed before a command: "--image disk.img ". Empty where
    // none is needed.
    virtual std::string ChoosingOptions() const = 0;
    // Platform calls and log records in order, since the last call: all of them if the choice has the trace,
    // and while an action is rehearsed; else only calls that can have failed.
    virtual Trace TakeTrace() = 0;
    // What the platform has handed out and not got back: the number of each kind of handle, object, memory.
    virtual const std::map<std::string, int>& Ledger() const = 0;
    // Runs an action that changes the PC only to find something out, and restores the PC. False without
    // running it if the PC cannot be restored.
    virtual bool Rehearse(const std::function<void()>& action) = 0;
    // Whether a partition of a disk image holds no file system that can be read; false if that is unknown,
    // and for a damaged volume with a letter, which reports its error when it is read.
    virtual bool LacksFileSystem(int disk, int partition) const = 0;
    // Its disks have numbers from 0 to below this.
    virtual int DiskNumbersEnd() const = 0;
    // The volume at that place, for looking into it. Throws Failed, with what is there instead,
    // and NotLookedInto for any volume of the PC that the program runs on.
    virtual FoundVolume VolumeAt(const VolumePlace& place) = 0;
    // Of a disk, what no published call answers; nothing of the PC that the program runs on.
    virtual DiskFacts FactsOf(int disk) const = 0;
    // Runs an action during which that partition has a letter, and takes the letter back. False without
    // running it if none can be given so, as on the PC that the program runs on.
    virtual bool LendLetter(const VolumePlace& place, const std::function<void(char letter)>& action) = 0;
    // Writes what was changed to the disk images, each as a whole or not at all. Returns what is wrong, empty
    // if nothing is. The first time it throws UnreadablePc, with nothing written, for a change of a volume
    // that is in no condition to be changed.
    virtual std::string Commit() = 0;
    // The files with which the changes of disk images since it was opened can be taken back.
    virtual std::vector<std::string> Backups() const = 0;
    // The changes since it was opened, a text each; nothing if they are unknown. TakeChanges: since the last
    // call of it.
    virtual std::optional<std::vector<std::string>> Changes() const = 0;
    virtual std::optional<std::vector<std::string>> TakeChanges() = 0;
    // The change before which the last operation was stopped, in words, as a dry run on the PC that the
    // program runs on does; nothing if it came to its end.
    virtual std::optional<std::string> TakeStop() = 0;
    // Runs an action that only looks at the PC: it meets no fault, and no fault plan counts its calls.
    virtual void Aside(const std::function<void()>& action) = 0;
    // How often each fault of the choice was met.
    virtual std::vector<FaultCount> FaultCounts() const = 0;
    // Whether an active flag can be set while another partition of the disk keeps its own, as a description
    // can have it.
    virtual bool KeepsActiveFlags() const = 0;
    // Writes the PC's description. Throws Failed.
    virtual void Save(OutputFile& file) const = 0;
};

// Opens the chosen PC. Throws WrongUse for a choice that is wrong or that this build does not support,
// UnreadablePc for a PC that cannot be read.
std::unique_ptr<OpenedPc> OpenPc(const PcChoice& choice, Access access);

// The two kinds; a build has the first or both of them.
std::unique_ptr<OpenedPc> OpenEmulatedPc(const PcChoice& choice, Access access);
// With `dryRun` the library is stopped before each change.
std::unique_ptr<OpenedPc> OpenRealPc(bool dryRun);
