// The results of each operation in words.
#pragma once

#include <span>
#include <string_view>

namespace c_interface {

struct ResultWords {
    int result;
    const char* words;
    bool isFailure;
};

struct OperationResults {
    const char* operation;
    std::span<const ResultWords> results;
    const char* otherwise;  // any other result; empty if there is none
};

// Whether the operation has a result at all.
inline bool HasResult(const OperationResults& results) {
    return !results.results.empty();
}

// Null if there is no such operation.
const OperationResults* FindResults(std::string_view operation);

// Empty if there is no such result.
std::string_view WordsOf(const OperationResults& results, int result);

bool IsFailure(const OperationResults& results, int result);

}  // namespace c_interface
