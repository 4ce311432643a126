// How far something is that takes long: a line on a terminal, shown after the first second, replaced at most
// five times a second, and gone at the end.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>

#include "tools/kestova/common/text.h"

// Where the line is, and the clock that it goes by.
struct ProgressPlace {
    std::ostream* terminal = nullptr;                          // null: it is not shown
    size_t columns = noLimit;                                  // of the terminal
    std::function<std::chrono::milliseconds()> now = nullptr;  // since any moment
};

class Progress {
  public:
    // "WHAT: 1.0 GiB of 4.0 GiB (25%), 512.0 MiB/s, 6 s left"; `text` puts an amount into words.
    Progress(ProgressPlace place, std::string what, uint64_t total, std::string (*text)(uint64_t));
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Add(uint64_t amount);
    // Clears the line, for something else to be written there; it comes back.
    void Hide();

  private:
    std::string Line(std::chrono::milliseconds elapsed) const;

    ProgressPlace place_;
    std::string what_;
    uint64_t total_;
    std::string (*text_)(uint64_t);
    uint64_t done_ = 0;
    std::chrono::milliseconds start_{};
    std::chrono::milliseconds next_{};  // when the line may be written
    bool isShown_ = false;
};
