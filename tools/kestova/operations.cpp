#include "tools/kestova/operations.h"

#include "tools/kestova/text.h"

namespace {

const Parameter disk{.name = "disk", .words = "number of a disk, from 0"};
const Parameter partition{.name = "partition", .words = "number of a partition, from 1"};

// What the four switches of the active partition have in common.
const Meaning noActivePartition{1, "no active partition could be read", true};
const Meaning unknownActivePartition{2, "the number of the active partition is unknown", true};
const Meaning noRecoveryPartition{
    3, "the recovery partition cannot be used: no letter, an unexpected type, or no recovery files", true};

std::vector<Operation> MakeOperations() {
    return {
        {.name = "Initialize",
         .summary = "Prepares COM security and loads the Virtual Disk Service.",
         .parameters = {{.name = "reserved", .kind = Kind::Flag, .words = "without effect"}},
         .results = {{1, "the service is ready"},
                     {0, "the service could not be loaded in 20 attempts", true}},
         .invoke = [](Kestova& object, const Json& arguments, Json&) -> Json {
             return object.Initialize(arguments.at("reserved").get<bool>());
         }},

        {.name = "GetFirstInternalDriveNumber",
         .summary = "Which disk is the first internal one.",
         .results = {{-1, "there is none, or it could not be told", true}},
         .otherwise = "the number of the disk",
         .invoke = [](Kestova& object, const Json&, Json&) -> Json {
             return object.GetFirstInternalDriveNumber();
         }},

        {.name = "GetDriveLetter",
         .summary = "The letter of a partition.",
         .parameters = {disk, partition},
         .results = {{"0", "it has none", true}},
         .otherwise = "its letter",
         .invoke = [](Kestova& object, const Json& arguments, Json&) -> Json {
             return LetterText(object.GetDriveLetter(arguments.at("disk").get<int>(),
                                                     arguments.at("partition").get<int>()));
         }},

        {.name = "SetActive",
         .summary =
             "Sets the active flag of an MBR partition of the first internal disk; clears no other flag itself.",
         .parameters = {partition},
         .results = {{0, "done"}, {1, "failed", true}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Json& arguments, Json&) -> Json {
             return object.SetActive(arguments.at("partition").get<int>());
         }},

        {.name = "ClearActive",
         .summary = "Clears every active flag of the first internal disk.",
         .results = {{0, "done"}, {1, "failed", true}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Json&, Json&) -> Json { return object.ClearActive(); }},

        {.name = "GetActivePartitionNumber",
         .summary = "Which partition of the first internal disk is active.",
         .results = {{-1, "there is none, or it could not be told", true}},
         .otherwise = "the number of the partition",
         .invoke = [](Kestova& object, const Json&, Json&) -> Json {
             return object.GetActivePartitionNumber();
         }},

        {.name = "GetDiskStyle",
         .summary = "The partition style of the first internal disk.",
         .parameters = {{.name = "style",
                         .words = "the style",
                         .output = true,
                         .meanings = {{0, "unknown, or not to be read"}, {1, "MBR"}, {2, "GPT"}}}},
         .results = {{1, "asked; the style tells the rest"}, {0, "there is no volume layer", true}},
         .invoke = [](Kestova& object, const Json&, Json& outputs) -> Json {
             THardDiskType style = HARD_DISK_UNKNOWN;
             const int result = object.GetDiskStyle(style);
             outputs["style"] = static_cast<int>(style);
             return result;
         }},

        {.name = "SetRcvprtActive",
         .summary = "Makes the recovery partition active and records the partition that was.",
         .results = {{0, "done, or it was active already"},
                     noActivePartition,
                     unknownActivePartition,
                     noRecoveryPartition,
                     {4, "the record could not be written", true},
                     {5, "the flag could not be set; setting the former one again was tried", true}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Json&, Json&) -> Json { return object.SetRcvprtActive(); }},

        {.name = "SetSystemActive",
         .summary = "Makes the recorded partition active again, 2 without a usable record.",
         .results = {{0, "done, or there was nothing to do"},
                     noActivePartition,
                     unknownActivePartition,
                     noRecoveryPartition,
                     {4, "the flag could not be set", true},
                     {5, "the record could not be deleted", true}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Json&, Json&) -> Json { return object.SetSystemActive(); }},

        {.name = "SetPOneActive",
         .summary = "As SetRcvprtActive, and drops a record that says 2 or nothing usable.",
         .results = {{0, "done"},
                     noActivePartition,
                     unknownActivePartition,
                     noRecoveryPartition,
                     {4, "the record could not be written", true},
                     {5, "the flag could not be set; setting the former one again was tried", true},
                     {6, "the record could not be dropped", true}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Json&, Json&) -> Json { return object.SetPOneActive(); }},

        {.name = "SetPTwoActive",
         .summary = "Makes partition 2 active and deletes the record.",
         .results =
             {{0, "done"},
              {1, "the flag could not be set; setting partition 1 again was tried", true},
              {2,
               "the recovery partition cannot be used: no letter, an unexpected type, or no recovery files",
               true},
              {3, "the record could not be deleted", true}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Json&, Json&) -> Json { return object.SetPTwoActive(); }},
    };
}

}  // namespace

const std::vector<Operation>& Operations() {
    static const std::vector<Operation> operations = MakeOperations();
    return operations;
}
