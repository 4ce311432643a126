// Temporary drive letters.

#include "tools/kestova/operations/operation_tables.h"

namespace {

const Meaning removeFailed{105, "LETTER_NOT_TAKEN", "the letter could not be taken", retry};

// Common results of the two operations that give partition 1 or 3 a letter.
std::vector<Meaning> ActivationResults(const char* wrongType, const char* takeBack) {
    return {{0, "DONE", "done"},
            {101, "TYPE_NOT_READ", "the type could not be read", retry},
            {104, "NO_LETTER", "the partition has no letter all the same", {Advice::Undo, takeBack}},
            {105, "LETTER_NOT_GIVEN", "the letter could not be given", retry},
            {113, "OTHER_TYPE", wrongType, giveUp}};
}

}  // namespace

std::vector<Operation> LetterOperations() {
    const Parameter given = LetterOutput("the letter of the partition", "none");
    const Meaning asked{1, "ASKED", "asked; the letter tells the rest"};
    return {
        {.name = "ActiveOrvoBootPartition",
         .summary = "Gives the maker's boot partition, number 1, a letter.",
         .parameters = {given},
         .results = ActivationResults("partition 1 is not the maker's boot partition",
                                      "DisableOrvoBootPartition takes a letter that was given"),
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values& outputs) -> Value {
             return WithLetter(outputs, [&](WCHAR& put) { return object.ActiveOrvoBootPartition(put); });
         }},

        {.name = "DisableOrvoBootPartition",
         .summary = "Takes the letter of partition 1, whoever gave it.",
         .results = {{0, "DONE", "done"}, removeFailed},
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values&) -> Value {
             return object.DisableOrvoBootPartition();
         }},

        {.name = "ActiveGPTSystemPartition",
         .summary = "Gives the EFI system partition, number 3, a letter.",
         .parameters = {given},
         .results = ActivationResults("partition 3 is not the EFI system partition",
                                      "DisableGPTSystemPartition takes a letter that was given"),
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values& outputs) -> Value {
             return WithLetter(outputs, [&](WCHAR& put) { return object.ActiveGPTSystemPartition(put); });
         }},

        {.name = "DisableGPTSystemPartition",
         .summary = "Takes the letter of partition 3, whoever gave it.",
         .results = {{0, "DONE", "done"}, removeFailed},
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values&) -> Value {
             return object.DisableGPTSystemPartition();
         }},

        {.name = "AssignRecoveryPartition",
         .summary = "Gives the recovery partition of a GPT disk a letter.",
         .parameters = {LetterOutput("its letter", "there is no recovery partition, or no letter for it",
                                     vague)},
         .results = {asked},
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values& outputs) -> Value {
             return WithLetter(outputs, [&](WCHAR& put) { return object.AssignRecoveryPartition(put); });
         }},

        {.name = "AssignWinREPartition",
         .summary = "Gives the Windows RE partition, number 2, a letter.",
         .parameters = {LetterOutput("its letter", "there is no Windows RE partition, or no letter for it",
                                     vague)},
         .results = {asked},
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values& outputs) -> Value {
             return WithLetter(outputs, [&](WCHAR& put) { return object.AssignWinREPartition(put); });
         }},

        {.name = "RemoveRecoveryPartition",
         .summary = "Takes the letter of the partition that AssignRecoveryPartition last found.",
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values&) -> Value {
             object.RemoveRecoveryPartition();
             return {};
         }},

        {.name = "RemoveWinREPartition",
         .summary = "Takes the letter of the partition that AssignWinREPartition last found.",
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values&) -> Value {
             object.RemoveWinREPartition();
             return {};
         }},

        {.name = "IsExistRcvprt",
         .summary = "Whether there is a recovery partition; it keeps the letter that it is given.",
         .results = {{1, "YES", "yes"}, {0, "NO", "no, or it could not be given a letter", {}, vague}},
         .changesPc = true,
         .invoke = [](Kestova& object, const Values&, Values&) -> Value { return object.IsExistRcvprt(); }},
    };
}
