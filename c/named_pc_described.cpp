// For a library that opens no disk images, and so needs nothing that reads them.

#include "c/named_pc.h"
#include "c/problem.h"
#include "tools/kestova/pc/described_pc.h"

machine::Pc c_interface::NamedPc(const std::string& nameOrFile, const std::string& asker) {
    machine::Pc pc = DescribedPc(nameOrFile, asker);
    if (!ImagesOf(pc).empty()) {
        throw Refusal{{.code = KESTOVA_PROBLEM_PC,
                       .words = nameOrFile + ": it is on disk images, which this library does not open"}};
    }
    return pc;
}
