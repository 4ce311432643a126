// The SHA-256 of a file, if this build has it: builds without disk images do without.
#pragma once

#include <memory>
#include <string>
#include <string_view>

// Loads the library for it, for a program that can load no code later; only in a build that has it. Throws
// machine::LibraryMissing.
void LoadSha256();

class Sha256 {
  public:
    // Throws WrongUse if this build does not have it.
    Sha256();
    ~Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;

    void Add(std::string_view bytes);
    // Of all that was added, in hexadecimal as sha256sum writes it. Only once.
    std::string Text();

  private:
    struct State;

    std::unique_ptr<State> state_;
};
