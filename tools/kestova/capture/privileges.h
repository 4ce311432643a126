// What Windows asks of a program that mounts a hive.
#pragma once

// Enables the privileges to back up and to restore, if the user has them; without them the mount fails. On an
// emulated PC nothing is needed.
void EnableHivePrivileges();
