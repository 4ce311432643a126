#include "tools/kestova/descriptions/validation.h"

#include "tools/kestova/common/errors.h"
#include "tools/kestova/pc/described_pc.h"

ValidationReport Validate(const std::string& file) {
    ValidationReport report{.file = file};
    try {
        report.mistakes = machine::FindMistakes(ReadDescriptionText(file));
    } catch (const UnreadablePc& problem) {
        report.problem = problem.what();
    }
    return report;
}
