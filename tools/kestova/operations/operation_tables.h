// The rows of the operations by section of the class, and their common parts.
#pragma once

#include <vector>

#include "base/drive_letter.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/operations/operations.h"

std::vector<Operation> DiskOperations();
std::vector<Operation> MediaOperations();
std::vector<Operation> LetterOperations();
std::vector<Operation> WindowsOperations();
std::vector<Operation> BootOperations();

// Of a meaning: also the answer if a call failed on the way to another one.
inline constexpr bool vague = true;

inline constexpr After retry{Advice::Retry};
inline constexpr After giveUp{Advice::GiveUp};
inline constexpr After makeAnother{Advice::GiveUp,
                                   "the object was made while memory had run out: make another one"};
inline constexpr After compareActive{
    Advice::Undo,
    "if GetActivePartitionNumber no longer answers the number from before, call ClearActive, then SetActive with it"};

inline const Parameter disk{.name = "disk", .words = "number of a disk, from 0"};
inline const Parameter partition{.name = "partition", .words = "number of a partition, from 1"};

inline int Number(const Values& arguments, const char* name) {
    return std::get<int>(ValueOf(arguments, name));
}

inline WCHAR Letter(const Values& arguments, const char* name) {
    return static_cast<WCHAR>(std::get<std::string>(ValueOf(arguments, name)).front());
}

// Calls a member that puts a letter, and adds the letter as the output of that name.
template <typename Member>
Value WithLetter(Values& outputs, Member member) {
    WCHAR letter = noLetter;
    const int result = member(letter);
    outputs.emplace_back("letter", LetterText(letter));
    return result;
}

// The output parameter of such a member.
inline Parameter LetterOutput(const char* words, const char* none, bool noneIsVague = false) {
    return {.name = "letter",
            .kind = Kind::Letter,
            .words = words,
            .output = true,
            .meanings = {{"0", "NONE", none, {}, noneIsVague}}};
}
