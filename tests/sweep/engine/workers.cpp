#include "tests/sweep/engine/workers.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include "tests/support/temporary_folder.h"

namespace sweep {

namespace {

constexpr unsigned mostProcesses = 64;
// No run takes a second, even under sanitizers on a busy machine.
constexpr unsigned secondsOfHang = 300;

// In memory that the processes share.
struct Shared {
    std::atomic<size_t> nextItem;
    char doing[mostProcesses][512];
};

Shared& Share() {
    void* const memory =
        mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::runtime_error("no shared memory");
    return *new (memory) Shared;
}

std::filesystem::path FileOf(const TemporaryFolder& folder, unsigned process) {
    return folder.Path() / std::to_string(process);
}

// The process takes one item after another.
void Work(const std::vector<Item>& items, const Sample& sample, Shared& shared, unsigned process,
          const TemporaryFolder& folder) {
    Tally tally;
    const auto about = [&](const std::string& words) {
        alarm(secondsOfHang);
        std::snprintf(shared.doing[process], sizeof shared.doing[process], "%s", words.c_str());
    };
    for (size_t next = shared.nextItem++; next < items.size(); next = shared.nextItem++)
        Sweep(items[next], sample, tally, about);
    std::ofstream out(FileOf(folder, process));
    tally.Write(out);
}

}  // namespace

Swept SweepInProcesses(const std::vector<Item>& items, const Sample& sample, unsigned processes) {
    const TemporaryFolder folder;
    Shared& shared = Share();
    std::vector<pid_t> children;
    for (unsigned process = 0; process < processes && process < mostProcesses; ++process) {
        const pid_t child = fork();
        if (child == -1) throw std::runtime_error("no process");
        if (child == 0) {
            Work(items, sample, shared, process, folder);
            std::_Exit(0);
        }
        children.push_back(child);
    }
    Swept swept;
    for (unsigned process = 0; process < children.size(); ++process) {
        int status = 0;
        waitpid(children[process], &status, 0);
        if (status != 0) {
            swept.crashes.push_back("status " + std::to_string(status) + " in " + shared.doing[process]);
            continue;
        }
        std::ifstream in(FileOf(folder, process));
        swept.tally.AddWritten(in);
    }
    munmap(&shared, sizeof(Shared));
    return swept;
}

}  // namespace sweep
