#include <nettle/sha2.h>

#include <array>

#include "base/hexadecimal.h"
#include "tools/kestova/common/sha256.h"

struct Sha256::State {
    sha256_ctx context;
};

Sha256::Sha256() : state_(std::make_unique<State>()) {
    sha256_init(&state_->context);
}

Sha256::~Sha256() = default;

void Sha256::Add(std::string_view bytes) {
    sha256_update(&state_->context, bytes.size(), reinterpret_cast<const uint8_t*>(bytes.data()));
}

std::string Sha256::Text() {
    std::array<uint8_t, SHA256_DIGEST_SIZE> digest;
    sha256_digest(&state_->context, digest.size(), digest.data());
    std::string text;
    for (const uint8_t byte : digest)
        text += Hex(byte, 2, HexDigits::Lower).substr(2);
    return text;
}
