// PCs that a user could own although nobody ships them: up to four disks with plausible partitions in any
// order, removable media, BitLocker, installed Windows or Windows PE.
#pragma once

#include <cstdint>
#include <string>

#include "machine/facts/pc.h"
#include "machine/generation/choice.h"

namespace machine {

Pc WildPc(Choice& choice);

// Takes one of the letters, or none if none is left.
std::string TakeLetter(std::string& letters, Choice& choice);

// A disk with that number; its volumes take letters from those that are left.
Disk WildDisk(uint32_t number, std::string& letters, Choice& choice);

// A disc, a stick, a card or a network drive with a letter.
Volume WildMedium(std::string& letters, Choice& choice);

// What the documentation of the platform leaves open.
Switches WildSwitches(Choice& choice);

// As BitLocker lists the volume with that letter.
EncryptableVolume WildEncryptable(char letter, Choice& choice);

}  // namespace machine
