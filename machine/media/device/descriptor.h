// The owner of a file descriptor.
#pragma once

#include <unistd.h>

#include <utility>

namespace machine {

class Descriptor {
  public:
    explicit Descriptor(int number = -1) : number_(number) {}
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
    // The caller closes it.
    int Release() { return std::exchange(number_, -1); }

  private:
    int number_;
};

}  // namespace machine
