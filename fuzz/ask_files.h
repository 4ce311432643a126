// What the library asks of the files of a volume.
#pragma once

#include <string>

#include "machine/facts/file_store.h"

inline void AskFiles(machine::VolumeStore& store) {
    std::string content;
    std::vector<machine::FileEntry> entries;
    store.Check();
    store.Find("");
    store.List("", entries);
    store.List("sources", entries);
    store.Find("sources/Orvo");
    store.Find("Windows/System32/Winload.exe");
    store.Read("sources/Qelhdrcv.ini", content);
    store.Read("SOURCES/image of the factory state.wim", content);
    store.Read("sources/IMAGE_OF.WIM", content);
    store.Write("sources/Qelhdrcv.ini", "[Recovery]\r\n");
    store.Write("SystemVolume.ini", "[System]\r\nActive=2\r\n");
    store.Remove("sources/boot.wim");
}
