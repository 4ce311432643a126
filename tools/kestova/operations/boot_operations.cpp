// Choosing which partition the PC boots from.

#include "manager/result_codes.h"
#include "tools/kestova/operations/operation_tables.h"

namespace {

constexpr After lookAtConditions{Advice::GiveUp,
                                 "what a partition must be and hold: docs/recovery-partitions.md"};
constexpr After recordStays{
    Advice::GoOn,
    "the PC starts from the partition that was asked for; SystemVolume.ini stays, and asking again deletes it"};

// Common results of the operations that switch the active partition.
const Meaning noActivePartition{1, "NO_ACTIVE_PARTITION", "no active partition could be read", retry};
const Meaning unknownActivePartition{2, "UNKNOWN_ACTIVE_PARTITION",
                                     "the number of the active partition is unknown", retry};
const Meaning noRecoveryPartition{
    3, "NO_RECOVERY_FILES",
    "the recovery partition cannot be used: no letter, an unexpected type, or no recovery files",
    lookAtConditions};

}  // namespace

std::vector<Operation> BootOperations() {
    return {
        {.name = "SetRcvprtActive",
         .summary = "Makes the recovery partition active and records the partition that was.",
         .results = {{.value = 0,
                      .name = "DONE",
                      .words = "done, or it was active already",
                      .outcomes = {recoveryWasActive, "it was active already", "done"}},
                     noActivePartition,
                     unknownActivePartition,
                     noRecoveryPartition,
                     {4, "RECORD_NOT_WRITTEN", "the record could not be written", retry},
                     {5, "FLAG_NOT_SET", "the flag could not be set; setting the former one again was tried",
                      compareActive}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values&) -> Value { return object.SetRcvprtActive(); }},

        {.name = "SetSystemActive",
         .summary = "Makes the recorded partition active again, 2 without a usable record.",
         .results = {{.value = 0,
                      .name = "DONE",
                      .words = "done, or there was nothing to do",
                      .outcomes = {systemWasActive, "there was nothing to do", "done"}},
                     noActivePartition,
                     unknownActivePartition,
                     noRecoveryPartition,
                     {4, "FLAG_NOT_SET", "the flag could not be set", compareActive},
                     {5, "RECORD_NOT_DELETED", "the record could not be deleted", recordStays}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values&) -> Value { return object.SetSystemActive(); }},

        {.name = "SetPOneActive",
         .summary = "As SetRcvprtActive, and drops a record that says 2 or nothing usable.",
         .results = {{0, "DONE", "done"},
                     noActivePartition,
                     unknownActivePartition,
                     noRecoveryPartition,
                     {4, "RECORD_NOT_WRITTEN", "the record could not be written", retry},
                     {5, "FLAG_NOT_SET", "the flag could not be set; setting the former one again was tried",
                      compareActive},
                     {6, "RECORD_NOT_DROPPED", "the record could not be dropped",
                      After{
                          Advice::GoOn,
                          "the PC starts from the partition that was asked for; SystemVolume.ini stays, and "
                          "means what none would"}}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values&) -> Value { return object.SetPOneActive(); }},

        {.name = "SetPTwoActive",
         .summary = "Makes partition 2 active and deletes the record.",
         .results =
             {{0, "DONE", "done"},
              {1, "FLAG_NOT_SET", "the flag could not be set; setting partition 1 again was tried",
               compareActive},
              {2, "NO_RECOVERY_FILES",
               "the recovery partition cannot be used: no letter, an unexpected type, or no recovery files",
               After{Advice::GoOn, "the PC starts from partition 2; SystemVolume.ini was not looked for"}},
              {3, "RECORD_NOT_DELETED", "the record could not be deleted", recordStays}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values&) -> Value { return object.SetPTwoActive(); }},
    };
}
