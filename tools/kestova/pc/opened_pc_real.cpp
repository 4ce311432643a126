// The PC that the program runs on. Windows loads the library and executes its calls.

#include "tools/kestova/pc/opened_pc.h"

namespace {

class RealOne final : public OpenedPc {
  public:
    const std::string& Note() const override { return note_; }
    InputFiles Inputs() const override { return {}; }
    Trace TakeTrace() override { return {}; }
    bool Rehearse(const std::function<void()>&) override { return false; }
    std::optional<std::vector<std::string>> Changes() const override { return std::nullopt; }
    void Save(const std::string&) const override {}

  private:
    std::string note_;
};

}  // namespace

std::unique_ptr<OpenedPc> OpenRealPc() {
    return std::make_unique<RealOne>();
}
