#include "tools/kestova/common/progress.h"

#include <ostream>
#include <utility>

#include "tools/kestova/common/display_width.h"
#include "tools/kestova/common/terminal.h"

namespace {

using std::chrono::milliseconds;

constexpr milliseconds beforeFirst(1000);
constexpr milliseconds betweenTwo(200);

// "7 s", "3 min"; a part of one counts as one.
std::string TimeText(double seconds) {
    const auto whole = static_cast<uint64_t>(seconds) + 1;
    return whole < 60 ? std::to_string(whole) + " s" : std::to_string((whole + 59) / 60) + " min";
}

}  // namespace

Progress::Progress(ProgressPlace place, std::string what, uint64_t total, std::string (*text)(uint64_t))
    : place_(std::move(place)), what_(std::move(what)), total_(total), text_(text) {
    if (place_.terminal == nullptr) return;
    start_ = place_.now();
    next_ = start_ + beforeFirst;
}

Progress::~Progress() {
    Hide();
}

void Progress::Add(uint64_t amount) {
    done_ += amount;
    if (place_.terminal == nullptr) return;
    const milliseconds now = place_.now();
    if (now < next_) return;
    next_ = now + betweenTwo;
    isShown_ = true;
    // In the last column some terminals begin the next line.
    *place_.terminal << clearLine << CutToWidth(Line(now - start_), place_.columns - 1) << std::flush;
}

void Progress::Hide() {
    if (std::exchange(isShown_, false)) *place_.terminal << clearLine << std::flush;
}

std::string Progress::Line(milliseconds elapsed) const {
    std::string line = what_ + ": " + text_(done_) + " of " + text_(total_);
    if (done_ == 0 || done_ > total_) return line;  // a total can be less than what there is
    const double rate = static_cast<double>(done_) / std::chrono::duration<double>(elapsed).count();
    const double left = static_cast<double>(total_ - done_) / rate;
    const auto percent =
        static_cast<unsigned>(100.0 * static_cast<double>(done_) / static_cast<double>(total_));
    return line + " (" + std::to_string(percent) + "%), " + text_(static_cast<uint64_t>(rate)) + "/s, " +
           TimeText(left) + " left";
}
