// Emulated PCs behind the C interface.

#include <algorithm>
#include <cstdlib>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

#include "c/handle.h"
#include "c/named_pc.h"
#include "c/start.h"
#include "machine/description/description.h"
#include "machine/entry/loaded_library.h"
#include "machine/journal/emulated_pc.h"
#include "tools/kestova/common/output_file.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/pc/described_pc.h"
#include "tools/kestova/pc/fault_option.h"
#include "tools/kestova/pc/trace.h"

using namespace c_interface;
using machine::Pc;

struct kestova_pc {
    explicit kestova_pc(Pc given) : emulated(std::move(given)) {}

    machine::EmulatedPc emulated;
    machine::LoadedLibrary library;
    Trace trace;      // taken from the journal
    size_t next = 0;  // the first of it that was not read
};

namespace {

std::mutex mutex;
// Not destroyed when the program ends: threads of handles may still be running.
kestova_pc* current = nullptr;

[[noreturn]] void Refuse(const std::string& why) {
    throw Refusal{{.code = KESTOVA_PROBLEM_PC, .words = why}};
}

// Does it, while no other call uses the PC. What is wrong with a description, a fault or a file is the
// problem's text.
template <typename Result, typename Action>
Result Alone(Result otherwise, const Action& action) noexcept {
    return Attempt(otherwise, [&] {
        const std::scoped_lock alone(mutex);
        try {
            return action();
        } catch (const std::runtime_error& what) {
            Refuse(what.what());
        }
    });
}

kestova_pc& Open(const kestova_pc* pc) {
    if (pc == nullptr || pc != current) Refuse("this PC is not open");
    return *current;
}

kestova_pc* OpenNamed(const std::string& nameOrFile, const std::string& asker) {
    return current = new kestova_pc(NamedPc(nameOrFile, asker));
}

// The number of bytes of the text, which is put there if it fits with its end.
unsigned int PutBytes(const std::string& text, char* buffer, unsigned int size) {
    if (buffer != nullptr && text.size() < size) std::copy_n(text.c_str(), text.size() + 1, buffer);
    return static_cast<unsigned int>(text.size());
}

}  // namespace

void c_interface::EnsureSystem() {
    const std::scoped_lock alone(mutex);
    if (current != nullptr) return;
    const char* const named = std::getenv("KESTOVA_PC");
    if (named == nullptr || *named == '\0')
        Refuse("no PC is open: call kestova_open_pc, or name one in the variable KESTOVA_PC");
    try {
        OpenNamed(named, "KESTOVA_PC");
    } catch (const std::runtime_error& what) {
        Refuse(what.what());
    }
}

kestova_pc* KESTOVA_CALL kestova_open_pc(const char* nameOrFile) {
    return Alone<kestova_pc*>(nullptr, [&] {
        if (nameOrFile == nullptr) Refuse("no PC was named");
        if (current != nullptr) Refuse("a PC is open in this process already");
        return OpenNamed(nameOrFile, "kestova_open_pc");
    });
}

int KESTOVA_CALL kestova_close_pc(kestova_pc* pc) {
    return Alone(0, [&] {
        Open(pc);
        if (AnyOpen()) Refuse("a handle is still open");
        delete std::exchange(current, nullptr);
        return 1;
    });
}

int KESTOVA_CALL kestova_fail(kestova_pc* pc, const char* fault) {
    return Alone(0, [&] {
        machine::FaultPlan& faults = Open(pc).emulated.faults;
        const machine::Turn turn;
        if (fault == nullptr) {
            faults.Disarm();
        } else {
            faults.Arm(ReadFault(fault, "kestova_fail"));
        }
        return 1;
    });
}

unsigned int KESTOVA_CALL kestova_trace_next(kestova_pc* pc, char* buffer, unsigned int size) {
    return Alone(0U, [&] {
        kestova_pc& open = Open(pc);
        if (open.next == open.trace.size()) {
            const machine::Turn turn;
            open.trace = open.emulated.journal.Take();
            open.next = 0;
        }
        if (open.trace.empty()) return 0U;
        const unsigned int length = PutBytes(TraceLine(open.trace[open.next]), buffer, size);
        if (buffer != nullptr && length < size) ++open.next;
        return length;
    });
}

unsigned int KESTOVA_CALL kestova_outstanding(kestova_pc* pc, char* buffer, unsigned int size) {
    return Alone(0U, [&] {
        const machine::Turn turn;
        const std::map<std::string, int> outstanding = Open(pc).emulated.ledger.Outstanding();
        return PutBytes(
            Joined(outstanding, ", ",
                   [](const auto& kind) { return std::to_string(kind.second) + " " + kind.first; }),
            buffer, size);
    });
}

int KESTOVA_CALL kestova_save(kestova_pc* pc, const char* file) {
    return Alone(0, [&] {
        if (file == nullptr) Refuse("no file was named");
        kestova_pc& open = Open(pc);
        const machine::Turn turn;
        if (!ImagesOf(open.emulated.facts).empty())
            Refuse(std::string(file) + ": no description holds a PC on disk images");
        if (!OutputFile("kestova_save", file).Replace(machine::WriteDescription(open.emulated.facts)))
            Refuse(std::string(file) + ": cannot be written");
        return 1;
    });
}
