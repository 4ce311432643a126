// The PC is an emulated one: disk images, a description, or a machine that comes with the tool.

#include <algorithm>
#include <filesystem>
#include <utility>

#include "machine/description/description.h"
#include "machine/entry/loaded_library.h"
#include "machine/facts/commit.h"
#include "machine/facts/find_disk.h"
#include "machine/facts/letters.h"
#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"
#include "machine/media/device/shell_word.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/pc/changes.h"
#include "tools/kestova/pc/described_pc.h"
#include "tools/kestova/pc/fault_option.h"
#include "tools/kestova/pc/images.h"
#include "tools/kestova/pc/opened_pc.h"

namespace {

namespace fs = std::filesystem;
using machine::ImageAccess;
using machine::ImageUse;
using machine::Pc;
using machine::SystemKind;

constexpr std::string_view standardMachine = "factory-mbr";

// What can be in a disk: a virtual one claims any size, but its file holds little more than what was
// compressed.
uint64_t BytesOnDisk(const machine::Disk& disk) {
    constexpr uint64_t bestCompression = 64;
    std::error_code error;
    const uintmax_t size = fs::file_size(disk.image, error);  // a disk of this computer has none
    return error || size > disk.size / bestCompression ? disk.size : size * bestCompression;
}

uint64_t ImageBytes(const Pc& pc) {
    uint64_t bytes = 0;
    for (const machine::Disk& disk : pc.disks)
        bytes += disk.image.empty() ? 0 : BytesOnDisk(disk);
    for (const machine::Volume& volume : pc.volumes) {
        std::error_code error;
        const uintmax_t size = fs::file_size(volume.image, error);
        if (!error) bytes += size;
    }
    return bytes;
}

// Switches to the other kind of system, configured as on the machines that come with the tool.
void Start(Pc& pc, SystemKind kind) {
    if (pc.system.kind == kind) return;
    const Pc example = kind == SystemKind::WindowsPe ? machine::WinPeTwoDisks() : machine::FactoryMbr();
    pc.system = example.system;
    for (const machine::Volume& volume : example.volumes) {
        if (!machine::FindLetter(pc, volume.letters.front())) pc.volumes.push_back(volume);
    }
}

ImageUse UseFor(const PcChoice& choice, Access access) {
    switch (access) {
        case Access::Ask:
            return UseOfImages(choice, ImageAccess::Read);
        case Access::Rehearse:
            return UseOfImages(choice, ImageAccess::Overlay);
        case Access::Change:
            break;
    }
    return UseOfImages(choice, ImageAccess::Write);
}

Pc ChooseWithoutMedia(const PcChoice& choice, Access access) {
    const ImageUse use = UseFor(choice, access);
    const SystemKind kind = choice.windows ? SystemKind::Windows : SystemKind::WindowsPe;
    if (!choice.images.empty()) return OpenImages(choice.images, kind, use);
    if (!choice.captured.empty()) return machine::ReadDescription(choice.captured, "the capture");
    const std::string name = choice.pc.empty() ? std::string(standardMachine) : choice.pc;
    Pc pc = DescribedPc(name, "--pc");
    if (!IsMachine(name)) {
        ResolveImages(pc, name);
        AttachImages(pc, use);
    }
    if (choice.windows || choice.windowsPe) Start(pc, kind);
    return pc;
}

Pc Choose(const PcChoice& choice, Access access) {
    Pc pc = ChooseWithoutMedia(choice, access);
    InsertMedia(pc, choice.discs, choice.sticks);
    return pc;
}

Pc Watched(Pc pc) {
    WatchFiles(pc);
    return pc;
}

// Null for a partition that does not exist, or holds no volume.
machine::Volume* FindVolumeAt(Pc& pc, const VolumePlace& place) {
    machine::Disk* const disk = machine::FindDisk(pc, static_cast<uint32_t>(place.disk));
    if (disk == nullptr) return nullptr;
    const auto partition = std::ranges::find(disk->partitions, static_cast<uint32_t>(place.partition),
                                             &machine::Partition::number);
    const bool holdsVolume = partition != disk->partitions.end() && partition->volume;
    return holdsVolume ? &*partition->volume : nullptr;
}

std::string TypedOptions(const PcChoice& choice) {
    std::string words;
    for (const std::string& image : choice.images)
        words += "--image " + machine::ShellWord(image) + " ";
    if (!choice.sectorSize.empty()) words += "--sector-size " + choice.sectorSize + " ";
    if (!choice.pc.empty()) words += "--pc " + machine::ShellWord(choice.pc) + " ";
    return words;
}

// Puts a value back as it was, also if something throws.
template <typename Value>
class Restoring {
  public:
    explicit Restoring(Value& value) : value_(value), kept_(value) {}
    ~Restoring() { value_ = std::move(kept_); }
    Restoring(const Restoring&) = delete;
    Restoring& operator=(const Restoring&) = delete;

  private:
    Value& value_;
    Value kept_;
};

class EmulatedOne final : public OpenedPc {
  public:
    EmulatedOne(const PcChoice& choice, Access access)
        : options_(TypedOptions(choice)),
          faults_(choice.faults),
          before_(Watched(Choose(choice, access))),
          shown_(before_),
          emulated_(before_) {
        emulated_.journal.LeaveOutUnshown();
        emulated_.journal.keepsSuccesses = choice.trace;
        for (const std::string& fault : faults_)
            emulated_.faults.Arm(ReadFault(fault));
        if (FindMachine(choice.pc) == nullptr) inputs_.description = choice.pc;
        for (const std::string* const image : ImagesOf(before_)) {
            inputs_.images.push_back(*image);
            inputs_.journals.push_back(UsualJournal(*image));
            inputs_.backups.push_back(UsualBackup(*image));
            inputs_.haveDisks = inputs_.haveDisks || IsDiskOfComputer(*image);
        }
        inputs_.imageBytes = ImageBytes(before_);
        areImagesOfOption_ = !choice.images.empty();
        for (const machine::Disk& disk : before_.disks) {
            if (IsDiskOfComputer(disk.image))
                identities_[static_cast<int>(disk.number)] = IdentityOfDisk(disk.image);
        }
        if (choice.images.empty() && choice.pc.empty() && choice.captured.empty()) {
            notes_.push_back("no PC was named: this is " + before_.name +
                             ", a machine in memory that comes with the tool");
        }
        for (const machine::Disk& disk : before_.disks) {
            if (disk.medium)
                notes_.insert(notes_.end(), disk.medium->Notes().begin(), disk.medium->Notes().end());
        }
    }

    std::vector<std::string> Notes() const override { return notes_; }
    std::vector<std::string> LaterNotes() const override {
        return before_.hiveReader ? before_.hiveReader->Notes() : std::vector<std::string>();
    }
    std::string Name() const override { return before_.name; }
    InputFiles Inputs() const override { return inputs_; }
    std::string ChoosingOptions() const override { return options_; }
    Trace TakeTrace() override { return emulated_.journal.Take(); }
    const std::map<std::string, int>& Ledger() const override { return emulated_.ledger.Counts(); }
    bool Rehearse(const std::function<void()>& action) override;
    bool LacksFileSystem(int disk, int partition) const override;
    int DiskNumbersEnd() const override;
    FoundVolume VolumeAt(const VolumePlace& place) override { return FindVolume(emulated_.facts, place); }
    DiskFacts FactsOf(int disk) const override;
    bool LendLetter(const VolumePlace& place, const std::function<void(char)>& action) override;
    std::string Commit() override;
    std::vector<std::string> Backups() const override;
    std::optional<std::vector<std::string>> Changes() const override {
        return ::Changes(before_, emulated_.facts, Since::Opening);
    }
    std::optional<std::vector<std::string>> TakeChanges() override;
    std::optional<std::string> TakeStop() override { return std::nullopt; }
    void Aside(const std::function<void()>& action) override;
    std::vector<FaultCount> FaultCounts() const override;
    bool KeepsActiveFlags() const override { return !emulated_.facts.switches.activeFlagIsExclusive; }
    void Save(OutputFile& file) const override;

  private:
    std::vector<std::string> notes_;
    InputFiles inputs_;
    std::string options_;
    std::vector<std::string> faults_;
    Pc before_;
    Pc shown_;  // when its changes were last taken
    bool areImagesOfOption_ = false;
    std::map<int, ComputerDisk> identities_;  // by disk number; asked before rights are given up
    bool hasCommitted_ = false;
    machine::EmulatedPc emulated_;
    machine::LoadedLibrary library_;
};

int EmulatedOne::DiskNumbersEnd() const {
    int end = 0;
    for (const machine::Disk& disk : emulated_.facts.disks)
        if (disk.number < mostDisks) end = std::max(end, static_cast<int>(disk.number) + 1);
    return end;
}

// Letters are facts of the PC, for volumes on images too.
bool EmulatedOne::Rehearse(const std::function<void()>& action) {
    const Restoring facts(emulated_.facts);
    const Restoring keeping(emulated_.journal.keepsSuccesses);
    emulated_.journal.keepsSuccesses = true;
    action();
    return true;
}

std::optional<std::vector<std::string>> EmulatedOne::TakeChanges() {
    std::vector<std::string> changes = ::Changes(shown_, emulated_.facts, Since::Mark);
    shown_ = emulated_.facts;
    MarkFiles(shown_);
    return changes;
}

void EmulatedOne::Aside(const std::function<void()>& action) {
    const Restoring faults(emulated_.faults);
    emulated_.faults = {};
    action();
}

std::vector<FaultCount> EmulatedOne::FaultCounts() const {
    std::vector<FaultCount> counts;
    for (size_t i = 0; i < faults_.size(); ++i) {
        counts.push_back({faults_[i], emulated_.faults.FiredByRule()[i],
                          emulated_.faults.Calls(ReadFault(faults_[i]).call)});
    }
    return counts;
}

DiskFacts EmulatedOne::FactsOf(int disk) const {
    DiskFacts facts{.countsAsSata = areImagesOfOption_,
                    .partitions = PartitionFactsOf(emulated_.facts, disk)};
    if (const auto identity = identities_.find(disk); identity != identities_.end()) {
        facts.model = identity->second.model;
        facts.serial = identity->second.serial;
    }
    return facts;
}

bool EmulatedOne::LendLetter(const VolumePlace& place, const std::function<void(char letter)>& action) {
    const std::string letters = "CDEFGHIJKLMNOPQRSTUVWXYZ";
    const size_t free = letters.find_first_not_of(machine::UsedLetters(emulated_.facts));
    if (free == std::string::npos) return false;
    bool isLent = false;
    Rehearse([&] {
        machine::Volume* const volume = FindVolumeAt(emulated_.facts, place);
        isLent = volume != nullptr;
        if (!isLent) return;
        volume->letters = letters.substr(free, 1);
        action(letters[free]);
    });
    return isLent;
}

std::string EmulatedOne::Commit() {
    for (const machine::Disk& disk : emulated_.facts.disks) {
        const std::string barred = disk.medium ? disk.medium->WhyBarred() : "";
        if (!barred.empty() && !hasCommitted_) throw UnreadablePc(barred);
    }
    hasCommitted_ = true;
    return machine::CommitMedia(emulated_.facts);
}

std::vector<std::string> EmulatedOne::Backups() const {
    std::vector<std::string> files;
    for (const machine::Disk& disk : emulated_.facts.disks) {
        const std::string file = disk.medium ? disk.medium->Backup() : "";
        if (!file.empty()) files.push_back(file);
    }
    return files;
}

bool EmulatedOne::LacksFileSystem(int disk, int partition) const {
    for (const machine::Disk& candidate : emulated_.facts.disks) {
        if (candidate.image.empty() || static_cast<int>(candidate.number) != disk) continue;
        for (const machine::Partition& found : candidate.partitions) {
            if (static_cast<int>(found.number) != partition) continue;
            if (!found.volume || found.volume->fileSystem == "RAW") return true;
            return found.volume->letters.empty() && machine::IsDamaged(*found.volume);
        }
    }
    return false;
}

void EmulatedOne::Save(OutputFile& file) const {
    Pc pc = emulated_.facts;
    for (std::string* const image : ImagesOf(pc))
        *image = fs::proximate(fs::absolute(*image), file.Folder()).string();
    try {
        if (!file.Replace(machine::WriteDescription(pc))) throw Failed(file.Path() + ": cannot be written");
    } catch (const machine::DescriptionError& error) {
        throw Failed(error.what());
    }
}

}  // namespace

bool IsMachine(std::string_view name) {
    return FindMachine(name) != nullptr;
}

bool IsDescription(const std::string& text) {
    try {
        machine::ReadDescription(text, "");
        return true;
    } catch (const machine::DescriptionError&) {
        return false;
    }
}

std::string DescriptionSchema() {
    return machine::DescriptionSchema();
}

std::unique_ptr<OpenedPc> OpenEmulatedPc(const PcChoice& choice, Access access) {
    return std::make_unique<EmulatedOne>(choice, access);
}
