// Recovery media and volumes.

#include "tools/kestova/operations/operation_tables.h"

std::vector<Operation> MediaOperations() {
    const Parameter letter{.name = "letter", .kind = Kind::Letter, .words = "a drive letter"};
    const Meaning yes{1, "YES", "yes"};
    const Meaning no{0, "NO", "no", {}, vague};
    return {
        {.name = "GetFactoryPrtDriveLetter",
         .summary = "The letter of the first volume labelled \"Factory\".",
         .parameters = {LetterOutput("its letter", "there is none", vague)},
         .results = {{1, "ASKED", "asked; the letter tells the rest"}},
         .invoke = [](Kestova& object, const Values&, Values& outputs) -> Value {
             return WithLetter(outputs, [&](WCHAR& put) { return object.GetFactoryPrtDriveLetter(put); });
         }},

        {.name = "GetRCVDISC",
         .summary = "The letter of the first recovery disc.",
         .results = {{"0", "NONE", "there is none", retry, vague}},
         .otherwise = "its letter",
         .invoke = [](Kestova& object, const Values&, Values&) -> Value {
             return LetterText(object.GetRCVDISC());
         }},

        {.name = "GetRCVUFD",
         .summary = "The letter of the first recovery USB flash drive.",
         .results = {{"0", "NONE", "there is none", retry, vague}},
         .otherwise = "its letter",
         .invoke = [](Kestova& object, const Values&, Values&) -> Value {
             return LetterText(object.GetRCVUFD());
         }},

        {.name = "IsWindowsRE",
         .summary = "Whether a fixed drive holds the maker's bootable Windows RE files.",
         .parameters = {letter},
         .results = {yes, no},
         .invoke = [](Kestova& object, const Values& arguments, Values&) -> Value {
             return object.IsWindowsRE(Letter(arguments, "letter"));
         }},

        {.name = "IsVistaOS",
         .summary = "Whether a fixed drive holds an installed Windows, or is encrypted and so taken for one.",
         .parameters = {letter},
         .results = {yes, no},
         .invoke = [](Kestova& object, const Values& arguments, Values&) -> Value {
             return object.IsVistaOS(Letter(arguments, "letter"));
         }},

        {.name = "IsCachePartitionForExpCacheExist",
         .summary = "Whether the second internal disk bears the cache partition.",
         .results = {yes, {0, "NO", "no, or it could not be told", {}, vague}},
         .invoke = [](Kestova& object, const Values&, Values&) -> Value {
             return object.IsCachePartitionForExpCacheExist();
         }},
    };
}
