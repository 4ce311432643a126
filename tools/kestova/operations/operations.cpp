#include "tools/kestova/operations/operations.h"

#include "tools/kestova/operations/operation_tables.h"

namespace {

std::vector<Operation> MakeOperations() {
    std::vector<Operation> all;
    for (const auto section :
         {DiskOperations, MediaOperations, LetterOperations, WindowsOperations, BootOperations}) {
        const std::vector<Operation> operations = section();
        all.insert(all.end(), operations.begin(), operations.end());
    }
    return all;
}

}  // namespace

const std::vector<Operation>& Operations() {
    static const std::vector<Operation> operations = MakeOperations();
    return operations;
}
