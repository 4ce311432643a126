#include "machine/journal/ledger.h"

namespace machine {

void Ledger::GiveBack(const std::string& kind) {
    if (counts_[kind] == 0) {
        Violation(kind + " given back too often");
        return;
    }
    --counts_[kind];
}

void* Ledger::Lend(const std::string& allocator, const std::string& kind, size_t size) {
    auto bytes = std::make_unique<char[]>(size > 0 ? size : 1);
    void* const address = bytes.get();
    blocks_[address] = {allocator, kind, std::move(bytes)};
    Take(kind);
    return address;
}

bool Ledger::Return(const std::string& allocator, void* address) {
    if (address == nullptr) return true;
    const auto block = blocks_.find(address);
    if (block == blocks_.end()) {
        Violation("memory freed with " + allocator + " that is not on loan");
        return false;
    }
    if (block->second.allocator != allocator) {
        Violation(block->second.kind + " freed with " + allocator + " instead of " + block->second.allocator);
    }
    GiveBack(block->second.kind);
    blocks_.erase(block);
    return true;
}

std::map<std::string, int> Ledger::Outstanding() const {
    std::map<std::string, int> outstanding = counts_;
    std::erase_if(outstanding, [](const auto& kind) { return kind.second == 0; });
    return outstanding;
}

}  // namespace machine
