// A buffer that passes lines on to a stream for people: what a terminal would obey is shown instead.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>

#include "tools/kestova/common/text.h"

class PrintableLines final : public std::streambuf {
  public:
    explicit PrintableLines(std::ostream& stream) : stream_(stream) {}

  protected:
    int_type overflow(int_type unit) override {
        if (traits_type::eq_int_type(unit, traits_type::eof())) return traits_type::not_eof(unit);
        line_ += traits_type::to_char_type(unit);
        if (line_.back() == '\n') {
            stream_ << PrintableText(line_);
            line_.clear();
        }
        return unit;
    }

  private:
    std::ostream& stream_;
    std::string line_;
};
