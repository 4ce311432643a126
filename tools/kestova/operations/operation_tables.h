// The rows of the operations, by the sections of the class, and what they have in common.
#pragma once

#include <vector>

#include "tools/kestova/common/text.h"
#include "tools/kestova/operations/operations.h"

std::vector<Operation> DiskOperations();
std::vector<Operation> MediaOperations();
std::vector<Operation> LetterOperations();
std::vector<Operation> WindowsOperations();
std::vector<Operation> BootOperations();

inline const Parameter disk{.name = "disk", .words = "number of a disk, from 0"};
inline const Parameter partition{.name = "partition", .words = "number of a partition, from 1"};

inline int Number(const Json& arguments, const char* name) {
    return arguments.at(name).get<int>();
}

inline WCHAR Letter(const Json& arguments, const char* name) {
    return static_cast<WCHAR>(arguments.at(name).get_ref<const std::string&>().front());
}

// Has a member put a letter, and tells it as the output of that name.
template <typename Member>
Json WithLetter(Json& outputs, Member member) {
    WCHAR letter = TEXT('0');
    Json result = member(letter);
    outputs["letter"] = LetterText(letter);
    return result;
}

// The output of such a member.
inline Parameter LetterOutput(const char* words, const char* none) {
    return {
        .name = "letter", .kind = Kind::Letter, .words = words, .output = true, .meanings = {{"0", none}}};
}
