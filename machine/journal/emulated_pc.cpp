#include "machine/journal/emulated_pc.h"

#include <cstdio>
#include <cstdlib>

namespace machine {

namespace {

EmulatedPc* current = nullptr;

[[noreturn]] void End(const char* message) {
    std::fprintf(stderr, "%s\n", message);
    std::abort();
}

}  // namespace

thread_local uint32_t LastError::ofThread_ = 0;
std::recursive_mutex Turn::mutex_;

EmulatedPc::EmulatedPc(Pc given) : facts(std::move(given)), faults(facts.faults) {
    if (current != nullptr) End("an emulated PC is alive already");
    current = this;
    lastError = 0;
    CLoggingFactory::GetInstance().AddSink(*this);
}

EmulatedPc::~EmulatedPc() {
    CLoggingFactory::GetInstance().RemoveSink(*this);
    current = nullptr;
}

EmulatedPc& EmulatedPc::Current() {
    if (current == nullptr) End("a platform call was made, but no emulated PC is alive");
    return *current;
}

}  // namespace machine
