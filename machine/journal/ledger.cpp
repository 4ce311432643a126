#include "machine/journal/ledger.h"

namespace machine {

void Ledger::GiveBack(const std::string& kind) {
    GiveBack(FindKind(kind));
}

void Ledger::GiveBack(Kind kind) {
    if (kind->second == 0) {
        Violation(kind->first + " given back too often");
        return;
    }
    --kind->second;
}

void* Ledger::Lend(const std::string& allocator, const std::string& kind, size_t size) {
    auto bytes = std::make_unique<char[]>(size > 0 ? size : 1);
    void* const address = bytes.get();
    const Kind counted = FindKind(kind);
    blocks_[address] = {allocator, counted, std::move(bytes)};
    ++counted->second;
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
        Violation(block->second.kind->first + " freed with " + allocator + " instead of " +
                  block->second.allocator);
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
