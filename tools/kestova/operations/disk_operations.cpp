// Disks and partitions.

#include "tools/kestova/operations/operation_tables.h"

std::vector<Operation> DiskOperations() {
    const Meaning no{0, "NO", "no, or it could not be told", {}, vague};
    return {
        {.name = "Initialize",
         .summary = "Prepares COM security and loads the Virtual Disk Service.",
         .parameters = {{.name = "reserved", .kind = Kind::Flag, .words = "without effect"}},
         .results = {{1, "READY", "the service is ready"},
                     {0, "NOT_LOADED", "the service could not be loaded in 20 attempts", retry}},
         .waits = "up to 20 attempts to load the service, one second apart",
         .invoke = [](Kestova& object, const Values& arguments, Values&) -> Value {
             return object.Initialize(std::get<bool>(ValueOf(arguments, "reserved")));
         }},

        {.name = "GetFirstInternalDriveNumber",
         .summary = "Which disk is the first internal one.",
         .results = {{-1, "NONE", "there is none, or it could not be told", retry, vague}},
         .otherwise = "the number of the disk",
         .invoke = [](Kestova& object, const Values&, Values&) -> Value {
             return object.GetFirstInternalDriveNumber();
         }},

        {.name = "GetDiskStyle",
         .summary = "The partition style of the first internal disk.",
         .parameters = {{.name = "style",
                         .words = "the style",
                         .output = true,
                         .meanings = {{0, "UNKNOWN", "unknown, or not to be read", {}, vague},
                                      {1, "MBR", "MBR"},
                                      {2, "GPT", "GPT"}}}},
         .results = {{1, "ASKED", "asked; the style tells the rest"},
                     {0, "NO_VOLUME_LAYER", "there is no volume layer", makeAnother}},
         .invoke = [](Kestova& object, const Values&, Values& outputs) -> Value {
             THardDiskType style = HARD_DISK_UNKNOWN;
             const int result = object.GetDiskStyle(style);
             outputs.emplace_back("style", static_cast<int>(style));
             return result;
         }},

        {.name = "GetCurrentDiskType",
         .summary = "The layout of the first internal disk.",
         .parameters = {{.name = "type",
                         .words = "the layout",
                         .output = true,
                         .meanings = {{0, "UNKNOWN", "unknown", {}, vague},
                                      {1, "GPT_ESP", "GPT, partition 3 is the EFI system partition"},
                                      {2, "GPT_OTHER", "GPT, partition 3 is not the EFI system partition"},
                                      {3, "MBR_SYSTEM_RESERVED",
                                       "MBR, partition 2 is labelled \"System Reserved\""},
                                      {4, "MBR_OTHER", "MBR, partition 2 is not labelled System Reserved"}}}},
         .results = {{1, "ASKED", "asked; the type tells the rest"}},
         .invoke = [](Kestova& object, const Values&, Values& outputs) -> Value {
             tagDiskTypeEnum type = DISK_TYPE_UNKNOWN;
             const int result = object.GetCurrentDiskType(type);
             outputs.emplace_back("type", static_cast<int>(type));
             return result;
         }},

        {.name = "IsDynamic",
         .summary = "Always 0: no disk counts as dynamic.",
         .results = {{0, "NO", "no"}},
         .invoke = [](Kestova& object, const Values&, Values&) -> Value { return object.IsDynamic(); }},

        {.name = "IsEFIBootSystem",
         .summary = "Whether the firmware is UEFI.",
         .results = {{1, "UEFI", "UEFI"}, {0, "BIOS", "BIOS", {}, vague}},
         .invoke = [](Kestova& object, const Values&, Values&) -> Value { return object.IsEFIBootSystem(); }},

        {.name = "GetDriveLetter",
         .summary = "The letter of a partition.",
         .parameters = {disk, partition},
         .results = {{"0", "NONE", "it has none", retry, vague}},
         .otherwise = "its letter",
         .invoke = [](Kestova& object, const Values& arguments, Values&) -> Value {
             return LetterText(
                 object.GetDriveLetter(Number(arguments, "disk"), Number(arguments, "partition")));
         }},

        {.name = "IsNeedHidePartition",
         .summary = "Whether a partition is not for the user's eyes.",
         .parameters = {disk, partition},
         .results = {{1, "YES", "yes"}, no},
         .invoke = [](Kestova& object, const Values& arguments, Values&) -> Value {
             return object.IsNeedHidePartition(Number(arguments, "disk"), Number(arguments, "partition"));
         }},

        {.name = "IsBIOSHibernationPartition",
         .summary = "Whether a partition is the BIOS's hibernation partition.",
         .parameters = {disk, partition},
         .results = {{1, "YES", "yes"}, no},
         .invoke = [](Kestova& object, const Values& arguments, Values&) -> Value {
             return object.IsBIOSHibernationPartition(Number(arguments, "disk"),
                                                      Number(arguments, "partition"));
         }},

        {.name = "SetBIOSHibernationPartitionID",
         .summary = "Makes an MBR partition of the first internal disk the BIOS's hibernation partition.",
         .parameters = {partition},
         .results = {{0, "DONE", "done"}, {1, "FAILED", "failed", retry}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Values& arguments, Values&) -> Value {
             return object.SetBIOSHibernationPartitionID(Number(arguments, "partition"));
         }},

        {.name = "GetActivePartitionNumber",
         .summary = "Which partition of the first internal disk is active.",
         .results = {{-1, "NONE", "there is none, or it could not be told", retry, vague}},
         .otherwise = "the number of the partition",
         .invoke = [](Kestova& object, const Values&, Values&) -> Value {
             return object.GetActivePartitionNumber();
         }},

        {.name = "SetActive",
         .summary =
             "Sets the active flag of an MBR partition of the first internal disk; clears no other flag itself.",
         .parameters = {partition},
         .results = {{0, "DONE", "done"}, {1, "FAILED", "failed", compareActive}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Values& arguments, Values&) -> Value {
             return object.SetActive(Number(arguments, "partition"));
         }},

        {.name = "ClearActive",
         .summary = "Clears every active flag of the first internal disk.",
         .results = {{0, "DONE", "done"}, {1, "FAILED", "failed", compareActive}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values&) -> Value { return object.ClearActive(); }},
    };
}
