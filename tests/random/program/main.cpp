// Random operations on random PCs, compared with a model of the PC: `random_runs COUNT SEED`; or the PC of a
// seed as a description: `random_runs --describe SEED`.

#include <cstdio>
#include <exception>
#include <string>

#include "machine/description/description.h"
#include "machine/entry/loaded_library.h"
#include "tests/random/engine/random_run.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: random_runs COUNT SEED, random_runs --describe SEED\n", stderr);
        return 2;
    }
    try {
        const machine::LoadedLibrary library;
        const uint64_t seed = std::stoull(argv[2]);
        if (argv[1] == std::string("--describe")) {
            machine::Choice choice(seed);
            std::fputs(machine::WriteDescription(randomly::PcOf(choice)).c_str(), stdout);
            return 0;
        }
        const uint64_t count = std::stoull(argv[1]);
        std::printf("random: %s operations from seed %s on\n", argv[1], argv[2]);
        const std::string contradictions = randomly::RunMany(count, seed);
        std::fputs(contradictions.c_str(), stderr);
        return contradictions.empty() ? 0 : 1;
    } catch (const std::exception& failed) {
        std::fprintf(stderr, "random_runs: %s\n", failed.what());
        return 2;
    }
}
