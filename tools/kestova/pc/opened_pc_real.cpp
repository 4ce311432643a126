// The PC that the program runs on. Windows loads the library and executes its calls.

#include "tools/kestova/common/errors.h"
#include "tools/kestova/passage/stopped_library.h"
#include "tools/kestova/pc/opened_pc.h"

namespace {

class RealOne final : public OpenedPc {
  public:
    explicit RealOne(bool dryRun) {
        if (dryRun) stopped_.emplace();
    }

    std::vector<std::string> Notes() const override { return {}; }
    std::vector<std::string> LaterNotes() const override { return {}; }
    std::string Name() const override { return {}; }
    InputFiles Inputs() const override { return {}; }
    std::string ChoosingOptions() const override { return ""; }
    Trace TakeTrace() override { return {}; }
    const std::map<std::string, int>& Ledger() const override { return unknown_; }
    bool Rehearse(const std::function<void()>&) override { return false; }
    bool LacksFileSystem(int, int) const override { return false; }
    int DiskNumbersEnd() const override { return mostDisks; }
    FoundVolume VolumeAt(const VolumePlace&) override {
        throw NotLookedInto("for the PC that the program runs on use dir, and certutil -hashfile");
    }
    DiskFacts FactsOf(int) const override { return {}; }
    bool LendLetter(const VolumePlace&, const std::function<void(char)>&) override { return false; }
    std::string Commit() override { return ""; }
    std::vector<std::string> Backups() const override { return {}; }
    std::optional<std::vector<std::string>> Changes() const override { return std::nullopt; }
    std::optional<std::vector<std::string>> TakeChanges() override { return std::nullopt; }
    std::optional<std::string> TakeStop() override {
        return stopped_ ? stopped_->Stop().TakeFirst() : std::nullopt;
    }
    void Aside(const std::function<void()>& action) override { action(); }
    std::vector<FaultCount> FaultCounts() const override { return {}; }
    bool KeepsActiveFlags() const override { return false; }
    void Save(OutputFile&) const override {}

  private:
    std::map<std::string, int> unknown_;
    std::optional<StoppedLibrary> stopped_;
};

}  // namespace

std::unique_ptr<OpenedPc> OpenRealPc(bool dryRun) {
    return std::make_unique<RealOne>(dryRun);
}
