#include "tools/kestova/picture/making_time.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "tools/kestova/common/errors.h"

namespace {

using std::chrono::seconds;
using Time = std::chrono::sys_seconds;

constexpr int64_t latest = 253402300799;  // the last second of the year 9999

Time TimeOf(std::string_view epoch) {
    int64_t count = 0;
    const auto [end, error] = std::from_chars(epoch.data(), epoch.data() + epoch.size(), count);
    if (error != std::errc() || end != epoch.data() + epoch.size() || count < 0 || count > latest)
        throw WrongUse("SOURCE_DATE_EPOCH: a number of seconds since 1970, not " + std::string(epoch));
    return Time(seconds(count));
}

Time TimeOfReport() {
    const char* const epoch = std::getenv("SOURCE_DATE_EPOCH");
    if (epoch != nullptr && *epoch != '\0') return TimeOf(epoch);
    return std::chrono::floor<seconds>(std::chrono::system_clock::now());
}

}  // namespace

std::string MakingTime() {
    const Time time = TimeOfReport();
    const auto midnight = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(midnight);
    const std::chrono::hh_mm_ss<seconds> clock(time - midnight);
    std::array<char, 32> text = {};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    return text.data();
}
