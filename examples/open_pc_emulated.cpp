// Opens an emulated PC.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "examples/open_pc.h"
#include "machine/description/description.h"
#include "machine/facts/commit.h"
#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"
#include "machine/media/disk_image.h"

namespace {

machine::Pc PcOf(const std::string& name) {
    for (const machine::NamedMachine& named : machine::NamedMachines()) {
        if (named.name == (name.empty() ? "factory-gpt" : name)) return named.make();
    }
    if (name.ends_with(".json")) {
        const std::ifstream file(name);
        if (!file) throw std::runtime_error(name + ": cannot be read");
        std::ostringstream text;
        text << file.rdbuf();
        return machine::ReadDescription(text.str(), name);
    }
    return machine::PcOfImages({name}, machine::SystemKind::WindowsPe, machine::ImageAccess::Write);
}

}  // namespace

struct OpenedPc::Inside {
    explicit Inside(machine::Pc facts) : pc(std::move(facts)) {}

    machine::EmulatedPc pc;
};

OpenedPc::OpenedPc(const std::string& name) {
    try {
        inside_ = std::make_unique<Inside>(PcOf(name));
    } catch (const std::exception& what) {
        std::fprintf(stderr, "recovery: %s\n", what.what());
        std::exit(3);
    }
}

OpenedPc::~OpenedPc() {
    const std::string problem = machine::CommitMedia(inside_->pc.facts);
    if (problem.empty()) return;
    std::fprintf(stderr, "recovery: %s\n", problem.c_str());
    std::exit(1);
}
