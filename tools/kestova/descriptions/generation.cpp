#include "tools/kestova/descriptions/generation.h"

#include <algorithm>
#include <filesystem>

#include "machine/description/description.h"
#include "machine/generation/generated_pc.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/output_file.h"

namespace {

namespace fs = std::filesystem;

std::string FileOf(const std::string& folder, uint64_t number) {
    constexpr size_t digits = 6;
    const std::string text = std::to_string(number);
    return (fs::path(folder) /
            ("pc-" + std::string(digits - std::min(text.size(), digits), '0') + text + ".json"))
        .string();
}

template <typename Visit>
void ForEachNumber(const GeneratedPcs& pcs, Visit visit) {
    for (uint64_t number = pcs.first; number - pcs.first < pcs.count; ++number)
        visit(number);
}

void CheckAreNew(const GeneratedPcs& pcs, const std::string& folder) {
    ForEachNumber(pcs, [&](uint64_t number) {
        const std::string file = FileOf(folder, number);
        std::error_code error;
        if (fs::exists(fs::symlink_status(file, error)))
            throw WrongUse("--output: " + file + " exists; --overwrite replaces it");
    });
}

void MakeFolder(const std::string& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (!fs::is_directory(folder)) throw Failed(folder + ": the folder cannot be made");
}

}  // namespace

void ShowGenerated(const GeneratedPcs& pcs, std::ostream& output) {
    const auto layout = pcs.count == 1 ? machine::Layout::Indented : machine::Layout::OneLine;
    ForEachNumber(pcs, [&](uint64_t number) {
        output << machine::WriteDescription(machine::GeneratedPc(pcs.seed, number), layout);
    });
}

void WriteGenerated(const GeneratedPcs& pcs, const std::string& folder, bool overwrite) {
    MakeFolder(folder);
    if (!overwrite) CheckAreNew(pcs, folder);
    ForEachNumber(pcs, [&](uint64_t number) {
        const std::string file = FileOf(folder, number);
        std::ofstream stream = OutputFile("--output", file).Stream();
        stream << machine::WriteDescription(machine::GeneratedPc(pcs.seed, number));
        if (!stream.flush()) throw Failed(file + ": cannot be written");
    });
}
