// The owner of a file descriptor.
#pragma once

#include <unistd.h>

#include <utility>

namespace machine {

class Descriptor {
  public:
    Descriptor() = default;
    // Takes what open() returned; negative is none.
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }

    explicit operator bool() const { return number_ >= 0; }
    int Number() const { return number_; }
    // Closes it; false if that reports an error, as some file systems do for what was written before.
    bool Close() { return close(std::exchange(number_, -1)) == 0; }
    // The caller closes it.
    int Release() { return std::exchange(number_, -1); }

  private:
    int number_ = -1;
};

}  // namespace machine
