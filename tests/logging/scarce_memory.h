// Memory of which the program's operator new gives no more than a test allows.
#pragma once

#include <ostream>

// While it exists, an allocation fails: the one of that number, counted from 1, or all from there on.
class ScarceMemory {
  public:
    enum class Lack { Once, FromThenOn };
    ScarceMemory(int number, Lack lack) noexcept;
    ~ScarceMemory();
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;

    // Whether an allocation has failed so far.
    bool HasFailed() const noexcept;
};

inline void PrintTo(ScarceMemory::Lack lack, std::ostream* out) {
    *out << (lack == ScarceMemory::Lack::Once ? "Once" : "FromThenOn");
}
