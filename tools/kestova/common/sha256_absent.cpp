#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/sha256.h"

struct Sha256::State {};

Sha256::Sha256() {
    throw WrongUse("--hash: this build has no SHA-256 (it has no image part)");
}

Sha256::~Sha256() = default;

void Sha256::Add(std::string_view) {}

std::string Sha256::Text() {
    return {};
}
