// Opens disk images, if this build includes the image part.
#pragma once

#include <string>
#include <vector>

#include "machine/facts/pc.h"
#include "machine/media/disk_image.h"
#include "tools/kestova/pc/opened_pc.h"

// What a command does beyond what every command does.
struct UnusualWork {
    bool readsHives = false;  // of the registry, on images
    bool hashesFiles = false;
};

// Before the program gives up starting others and loading code, and when all images are open: virtual disks
// are opened by another program, and these and E01 images by libraries that other images do without; so is
// unusual work done. Throws Failed, also if a library is missing that the work needs.
void BeginOpening(const PcChoice& choice, const UnusualWork& work);
void EndOpening();

// As machine::PcOfImages. Throws UnreadablePc; WrongUse if this build has no image part.
machine::Pc OpenImages(const std::vector<std::string>& paths, machine::SystemKind system,
                       const machine::ImageUse& use);

struct LinkedLibrary {
    const char* name;
    const char* licence;
};

// What the image part links, and what it loads for the images that need it; nothing if this build has none.
std::vector<LinkedLibrary> ImageLibraries();
std::vector<LinkedLibrary> LateImageLibraries();

// Whether an image is a disk of this computer; false if this build has no image part.
bool IsDiskOfComputer(const std::string& image);

// How the kernel knows a disk of this computer; empty where it does not.
struct ComputerDisk {
    std::string model = {};
    std::string serial = {};
};

ComputerDisk IdentityOfDisk(const std::string& image);

// Asks the user, on a terminal, whether each disk of this computer among the images is to be changed. False
// if there is none. Throws Failed if the answer is no, UnreadablePc if there is nobody to ask.
bool ConfirmDisks(const std::vector<std::string>& images);

// Where the user wants the journal of changes. Throws WrongUse for one file and several images.
machine::JournalPlace JournalOf(const PcChoice& choice);

// What the user has the images used for, and how. On a terminal, asks before a disk of this computer is
// changed. Throws WrongUse for a sector size that no disk has, Failed if the answer is no.
machine::ImageUse UseOfImages(const PcChoice& choice, machine::ImageAccess access);

// The usual journal of an image; empty if this build has no image part.
std::string UsualJournal(const std::string& image);
// The same of its next backup.
std::string UsualBackup(const std::string& image);

// Finishes or takes back a change of the image that was interrupted. Throws as OpenImages.
machine::Recovery RecoverChange(const std::string& path, const machine::ImageUse& use);

// Writes the partition table of the image anew from its good copy. Throws as OpenImages.
machine::RepairedTable RepairTableOf(const std::string& path, const machine::ImageUse& use);

// Takes back what the backup of an image's changes holds. Throws as OpenImages.
machine::UndoneChange UndoChange(const std::string& path, const std::string& backup,
                                 const machine::ImageUse& use);

// The image that a backup is named after; empty if it is not named so, or this build has no image part.
std::string ImageOfBackupFile(const std::string& backup);

// Inserts discs and sticks, each under its own letter. Throws as OpenImages.
void InsertMedia(machine::Pc& pc, const std::vector<std::string>& discs,
                 const std::vector<std::string>& sticks);

// Opens the images that a description names. Throws as OpenImages.
void AttachImages(machine::Pc& pc, const machine::ImageUse& use);
