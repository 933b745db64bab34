// SPDX-License-Identifier: Apache-2.0
#include "support/FuzzText.h"

#include <ZORFoundation/Security/ZORSecurity.h>
#include <ZORPlatform/Security/SecCertificate.h>

#include <stdlib.h>

#include <optional>
#include <vector>

using namespace ZORFoundation;
using fuzz::require;

namespace {

using Bytes = std::vector<std::uint8_t>;

// The roots of the machine are no part of the input.
const bool kHasNoRoots =
    setenv("SSL_CERT_FILE", "/nonexistent", 1) == 0 && setenv("SSL_CERT_DIR", "/nonexistent", 1) == 0;

void requireOneOutcome(bool hasValue, const std::optional<NSError>& error) {
    require(hasValue != error.has_value());
    if (error) require(error->domain() == u"ZorSecurityErrorDomain" && error->code() == 0);
}

void requireKeyWorksOrFails(const SecKey& key, std::span<const std::uint8_t> data) {
    std::optional<NSError> error;
    const std::size_t blockSize = ZORPlatform::SecKeyGetBlockSize(key);
    const std::size_t room = blockSize > 12 ? blockSize - 12 : 0;
    const std::optional<Bytes> sealed = ZORSecurity::rsaEncrypt(data.first(std::min(room, data.size())), key, &error);
    requireOneOutcome(sealed.has_value(), error);
    if (sealed) require(sealed->size() == blockSize && blockSize <= 128);
    require(!ZORSecurity::rsaEncrypt(Bytes(room + 1), key, &error));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    require(kHasNoRoots);
    const Bytes bytes(data, data + size);
    std::optional<NSError> error;
    const std::optional<SecKey> key = ZORSecurity::getPublicKeyFromCertificateData(bytes, &error);
    requireOneOutcome(key.has_value(), error);
    if (key) requireKeyWorksOrFails(*key, bytes);

    const auto certificate = ZORPlatform::SecCertificateCreateWithData(bytes);
    require(certificate || !key);
    if (!certificate) return 0;
    require(ZORPlatform::SecCertificateCopyData(*certificate) == bytes);
    Bytes longer = bytes;
    longer.push_back(0);
    require(!ZORPlatform::SecCertificateCreateWithData(longer));
    return 0;
}
