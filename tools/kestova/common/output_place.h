// A folder that is held open and the name of a file in it, so that nobody can put another file in its place
// by renaming folders or links.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

#include "machine/media/device/descriptor.h"

struct OutputPlace {
    machine::Descriptor folder = {};  // none if it does not exist
    std::string name = {};            // no link when it was found
    // The file as it was found; nothing for a missing one.
    std::optional<struct stat> found = {};
    // The first link on the way that another user has put into a folder which all users share, as in /tmp;
    // empty without one. Nothing is followed from there.
    std::string foreignLink = {};
};

// Follows the path, link by link.
OutputPlace FindPlace(const std::string& path);

// Whether somebody who may not write the file itself can have put it there: as the system's own protection of
// shared folders has it (sticky, and writable for all), which may be switched off.
bool IsForeign(const struct stat& folder, const struct stat& file);
