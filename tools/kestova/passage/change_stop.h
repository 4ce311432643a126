// Stops an operation of the library before it changes the PC that the program runs on.
#pragma once

#include <optional>
#include <string>

class ChangeStop {
  public:
    // The library asks for a change, which whoever calls this refuses. The first one is kept, in words:
    // "delete the file E:\SystemVolume.ini".
    void Refuse(std::string change);
    // The first one since the last call; nothing if none was asked for.
    std::optional<std::string> TakeFirst();

  private:
    std::optional<std::string> first_;
};
