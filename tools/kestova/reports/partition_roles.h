// What the partitions of the internal disk are for, and what else a recovery application asks first. All of
// it is told by the public operations of the class.
#pragma once

#include <string>

#include "tools/kestova/common/json.h"
#include "tools/kestova/operations/session.h"

// Adds to the status, whose partitions are listed: "layout" with "layoutName", "encryptedVolumes" (their
// letters; null when BitLocker cannot be asked), "recoveryDisc" and "recoveryStick" (letters or null),
// "cachePartition" (of the second internal disk), "windows" (disk, partition and letter of the installed
// Windows, or null), and to each partition "hide" and "roles", each role with the reason. On an emulated PC
// the recovery partitions of a GPT disk are looked into, and afterwards everything is as it was; on the PC
// that the program runs on nobody gives them a letter, so that their type alone is told.
void AddRoles(Session& session, Json& status);

// The roles of a partition in one line: "Windows RE: type and contents"; "-" without one.
std::string RolesText(const Json& partition);
