#include "tests/faults/memory/functions.h"

#include <elf.h>
#include <link.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Function {
    uintptr_t begin;
    uintptr_t end;
    FunctionOwner owner;
};

// Only the published calls have C names, of what runs while the library does.
FunctionOwner OwnerOfName(std::string_view name) {
    if (!name.starts_with("_Z") || name.find("7machine") != std::string_view::npos) return FunctionOwner::Pc;
    return name.starts_with("_ZN7Kestova") ? FunctionOwner::Kestova : FunctionOwner::Other;
}

uintptr_t LoadAddress() {
    uintptr_t address = 0;
    const auto takeFirst = [](dl_phdr_info* program, size_t, void* result) {
        *static_cast<uintptr_t*>(result) = program->dlpi_addr;
        return 1;
    };
    dl_iterate_phdr(takeFirst, &address);
    return address;
}

template <typename Record>
std::span<const Record> Records(const std::string& file, size_t offset, size_t size) {
    return {reinterpret_cast<const Record*>(file.data() + offset), size / sizeof(Record)};
}

// The functions in ascending order. A program without the table ends: its tests would find nothing.
std::vector<Function> ReadFunctions() {
    std::ifstream program("/proc/self/exe", std::ios::binary);
    const std::string file((std::istreambuf_iterator<char>(program)), std::istreambuf_iterator<char>());
    const uintptr_t base = LoadAddress();
    const auto& header = *reinterpret_cast<const ElfW(Ehdr)*>(file.data());
    const auto sections = Records<ElfW(Shdr)>(file, header.e_shoff, header.e_shnum * sizeof(ElfW(Shdr)));
    std::vector<Function> functions;
    for (const ElfW(Shdr) & section : sections) {
        if (section.sh_type != SHT_SYMTAB) continue;
        const char* const names = file.data() + sections[section.sh_link].sh_offset;
        for (const ElfW(Sym) & symbol : Records<ElfW(Sym)>(file, section.sh_offset, section.sh_size)) {
            if (ELF64_ST_TYPE(symbol.st_info) != STT_FUNC || symbol.st_size == 0) continue;
            const uintptr_t begin = base + symbol.st_value;
            functions.push_back({begin, begin + symbol.st_size, OwnerOfName(names + symbol.st_name)});
        }
    }
    if (functions.empty()) {
        std::fputs("the program has no table of symbols\n", stderr);
        std::abort();
    }
    std::ranges::sort(functions, {}, &Function::begin);
    return functions;
}

}  // namespace

FunctionOwner OwnerOf(const void* address) {
    static const std::vector<Function> functions = ReadFunctions();
    const uintptr_t searched = reinterpret_cast<uintptr_t>(address);
    const auto next = std::ranges::upper_bound(functions, searched, {}, &Function::begin);
    if (next == functions.begin()) return FunctionOwner::Other;
    const Function& function = *std::prev(next);
    return searched < function.end ? function.owner : FunctionOwner::Other;
}
