// The books of what the platform lent: handles, references, memory, strings, keys. Each kind is named for
// what was lent ("file handle", "IVdsDisk", "VDS_DISK_PROP string"); a test ends with every kind at zero, or
// at exactly what a kept behaviour leaves.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace machine {

class Ledger {
  public:
    void Take(const std::string& kind) { ++counts_[kind]; }
    // Giving back what was not taken is a violation and changes nothing else.
    void GiveBack(const std::string& kind);

    // A block of zeroed memory on loan, freed at the end if the borrower does not return it. `allocator` is
    // the family ("CoTaskMem", "GlobalAlloc", "BSTR"); `kind` is what the ledger shows.
    void* Lend(const std::string& allocator, const std::string& kind, size_t size);
    // Frees the block. A null address is fine; an unknown one, or one of another family, is a violation.
    // False when the address is not on loan, so that nothing was freed.
    bool Return(const std::string& allocator, void* address);

    // What is still on loan; kinds at zero are left out.
    std::map<std::string, int> Outstanding() const;
    // What went wrong: double frees, too many releases, handles closed twice.
    const std::vector<std::string>& Violations() const { return violations_; }
    void Violation(std::string what) { violations_.push_back(std::move(what)); }

  private:
    struct Block {
        std::string allocator;
        std::string kind;
        std::unique_ptr<char[]> bytes;
    };

    std::map<std::string, int> counts_;
    std::map<void*, Block> blocks_;
    std::vector<std::string> violations_;
};

}  // namespace machine
