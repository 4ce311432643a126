#include <nettle/sha2.h>

#include <array>

#include "base/hexadecimal.h"
#include "machine/media/device/late_library.h"
#include "tools/kestova/common/sha256.h"

namespace {

// The functions in use of libnettle.
struct LibNettle {
    machine::LateLibrary library{"libnettle.so.8", "libnettle8"};
    decltype(&nettle_sha256_init) init = library.Function("nettle_sha256_init");
    decltype(&nettle_sha256_update) update = library.Function("nettle_sha256_update");
    decltype(&nettle_sha256_digest) digest = library.Function("nettle_sha256_digest");
};

const LibNettle& Nettle() {
    static const LibNettle loaded;
    return loaded;
}

}  // namespace

void LoadSha256() {
    Nettle();
}

struct Sha256::State {
    sha256_ctx context;
};

Sha256::Sha256() : state_(std::make_unique<State>()) {
    Nettle().init(&state_->context);
}

Sha256::~Sha256() = default;

void Sha256::Add(std::string_view bytes) {
    Nettle().update(&state_->context, bytes.size(), reinterpret_cast<const uint8_t*>(bytes.data()));
}

std::string Sha256::Text() {
    std::array<uint8_t, SHA256_DIGEST_SIZE> digest;
    Nettle().digest(&state_->context, digest.size(), digest.data());
    std::string text;
    for (const uint8_t byte : digest)
        text += Hex(byte, 2, HexDigits::Lower).substr(2);
    return text;
}
