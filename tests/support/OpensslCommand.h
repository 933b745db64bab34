// SPDX-License-Identifier: Apache-2.0
#pragma once

// The other side of an encryption: the openssl command, which knows nothing of this library.

#include <support/TemporaryDirectory.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace support {

/// What the command decrypts with a private key, RSA with PKCS#1 v1.5 padding.
///
/// @param keyFile  the private key in PEM
inline std::vector<std::uint8_t> decryptedByCommand(const std::filesystem::path& keyFile,
                                                    const std::vector<std::uint8_t>& sealed) {
    const TemporaryDirectory directory;
    writeFile(directory / "sealed", sealed);
    const std::string command = "openssl pkeyutl -decrypt -pkeyopt rsa_padding_mode:pkcs1 -inkey '" + keyFile.string() +
                                "' -in '" + (directory / "sealed").string() + "' -out '" +
                                (directory / "plain").string() + "'";
    if (std::system(command.c_str()) != 0) throw std::runtime_error("the openssl command refuses to decrypt");
    return readFile(directory / "plain");
}

}  // namespace support
