#include <algorithm>

#include "base/utf.h"
#include "c/problem.h"
#include "c/results.h"

namespace c_interface {

namespace {

const ResultWords* Find(const OperationResults& results, int result) {
    const auto found = std::ranges::find(results.results, result, &ResultWords::result);
    return found != results.results.end() ? &*found : nullptr;
}

}  // namespace

std::string_view WordsOf(const OperationResults& results, int result) {
    const ResultWords* const found = Find(results, result);
    return found != nullptr ? found->words : results.otherwise;
}

bool IsFailure(const OperationResults& results, int result) {
    const ResultWords* const found = Find(results, result);
    return found != nullptr && found->isFailure;
}

}  // namespace c_interface

using namespace c_interface;

unsigned int KESTOVA_CALL kestova_describe(const char* operation, int result, kestova_char* buffer,
                                           unsigned int size) {
    try {
        const OperationResults* const results = operation != nullptr ? FindResults(operation) : nullptr;
        if (results == nullptr) return 0;
        const std::basic_string<WCHAR> words = ToWide(std::string(WordsOf(*results, result)));
        PutText(words, buffer, buffer != nullptr ? size : 0);
        return static_cast<unsigned int>(words.size());
    } catch (...) {
        return 0;
    }
}
