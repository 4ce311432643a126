// The results that the platform documents for each of its calls, besides plain success.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace machine {

// What a call can end with: failure codes as result or last error, or, of a call that cannot fail, the values
// that it returns.
struct DocumentedResults {
    std::string_view call;
    std::vector<uint32_t> failures;
    std::vector<uint32_t> successes = {};       // other than S_OK, with outputs
    std::vector<uint32_t> emptySuccesses = {};  // other than S_OK and S_FALSE, without outputs
    std::vector<uint32_t> answers = {};         // codes of failures by which the call answers
};

const std::vector<DocumentedResults>& AllDocumentedResults();

// The row of a call of the call table.
const DocumentedResults& ResultsOf(std::string_view call);

}  // namespace machine
