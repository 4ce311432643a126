// qemu-nbd, which reads and writes the formats of virtual disks in a process of its own.
#pragma once

#include <string>

#include "machine/media/device/descriptor.h"

namespace machine {

struct ServedDisk {
    std::string path;
    std::string format;  // as qemu names it
    bool forWriting = false;
};

// Ends when the connection does, once it has been spoken over.
struct DiskServer {
    Descriptor connection;  // speaks NBD; nobody else can have one
    Descriptor said;        // its standard error
    Descriptor process;     // can be read once it has ended, and has let go of its files
};

// What goes wrong once it is started, such as its program being missing, it says itself. Throws ImageError.
DiskServer StartDiskServer(const ServedDisk& disk);

// Starts the process that starts the servers, as the first of them does otherwise. A program that gives up
// starting others calls this before. Throws ImageError.
void KeepDiskServerStarter();
// Ends that process; servers whose disks are open go on. If this program ends before, they all end.
void EndDiskServerStarter();

}  // namespace machine
