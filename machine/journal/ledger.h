// Counts what the platform has handed out: handles, references, memory, strings, keys. Kinds are named for
// what they count ("file handle", "IVdsDisk", "VDS_DISK_PROP string"). A test ends with all kinds at zero,
// or with exactly the leaks that required behaviour causes.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace machine {

class Ledger {
  public:
    void Take(const std::string& kind) { ++counts_[kind]; }
    // Releasing what was not taken is a violation and changes nothing else.
    void GiveBack(const std::string& kind);

    // A block of zeroed memory; the ledger frees it in the end if the caller does not. `allocator` is the
    // family of functions ("CoTaskMem", "GlobalAlloc", "BSTR"), `kind` the name in the ledger.
    void* Lend(const std::string& allocator, const std::string& kind, size_t size);
    // Frees the block. A null address is allowed; an unknown one, or one of another family, is a violation.
    // False if nothing was freed because the address is not allocated.
    bool Return(const std::string& allocator, void* address);

    // What is still held; kinds at zero are left out.
    std::map<std::string, int> Outstanding() const;
    // The same of every kind that was ever handed out, those at zero too.
    const std::map<std::string, int>& Counts() const { return counts_; }
    // Double frees, extra releases, handles closed twice.
    const std::vector<std::string>& Violations() const { return violations_; }
    void Violation(std::string what) { violations_.push_back(std::move(what)); }

  private:
    // The count of a kind, by its name.
    using Kind = std::map<std::string, int>::iterator;

    Kind FindKind(const std::string& kind) { return counts_.try_emplace(kind).first; }
    void GiveBack(Kind kind);

    struct Block {
        std::string allocator;
        Kind kind;
        std::unique_ptr<char[]> bytes;
    };

    std::map<std::string, int> counts_;
    std::map<void*, Block> blocks_;
    std::vector<std::string> violations_;
};

}  // namespace machine
