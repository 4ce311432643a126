// The PC that the examples work on.
#pragma once

#include <memory>
#include <string>

// On Windows the PC that the example runs on; nothing is opened. Elsewhere an emulated PC, to which the
// platform calls go during the lifetime of the object: a disk image, a description, or a PC that comes with
// the project; without a name the factory PC with a GPT disk. What was changed is written to the image at the
// end of that lifetime. Ends the program with a message if there is no such PC, or its image cannot be
// written.
class OpenedPc {
  public:
    explicit OpenedPc(const std::string& name);
    ~OpenedPc();

  private:
    struct Inside;
    std::unique_ptr<Inside> inside_;
};
