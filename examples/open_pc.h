// Which PC the examples work on.
#pragma once

#include <memory>
#include <string>

// On Windows the PC that the example runs on, and there is nothing to open. Elsewhere an emulated PC that
// answers the platform's calls while the object lives: a disk image, a description, or a PC that comes with
// the project; without a name the factory PC with a GPT disk. Ends the program with a message when there is
// no such PC.
class OpenedPc {
  public:
    explicit OpenedPc(const std::string& name);
    ~OpenedPc();

  private:
    struct Inside;
    std::unique_ptr<Inside> inside_;
};
