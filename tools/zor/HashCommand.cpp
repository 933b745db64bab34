// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/CommandTables.h>

#include <tools/zor/ByteInput.h>
#include <tools/zor/filter/Output.h>

#include <ZORFoundation/DataStreams.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <unistd.h>

#include <algorithm>
#include <array>

namespace zor {
namespace {

using ZORFoundation::ZORHashType;

constexpr std::size_t kPieceBytes = std::size_t{64} * 1024;

struct Algorithm {
    std::string_view name;
    std::string_view help;
    ZORHashType type;
};

constexpr std::array kAlgorithms{
    Algorithm{"md5", "128 bits (RFC 1321), only against accidents", ZORHashType::MD5},
    Algorithm{"sha1", "160 bits (FIPS 180-4), only against accidents", ZORHashType::SHA1},
    Algorithm{"sha224", "224 bits (FIPS 180-4)", ZORHashType::SHA224},
    Algorithm{"sha256", "256 bits (FIPS 180-4)", ZORHashType::SHA256},
    Algorithm{"sha384", "384 bits (FIPS 180-4)", ZORHashType::SHA384},
    Algorithm{"sha512", "512 bits (FIPS 180-4)", ZORHashType::SHA512},
};
constexpr auto kActions = actionsOf(kAlgorithms);

ExitCode run(const Arguments& arguments) {
    const std::vector<std::string>& words = arguments.words;
    if (words.size() > 2) throw UsageError("hash: there is more than one FILE");
    const auto algorithm = std::find_if(kAlgorithms.begin(), kAlgorithms.end(),
                                        [&](const Algorithm& known) { return known.name == words[0]; });
    ZORFoundation::DigestStream digest(algorithm->type);
    ByteInput input(words.size() == 2 ? words[1] : "", kPieceBytes);
    for (auto piece = input.next(); !piece.empty(); piece = input.next()) digest.update(piece);
    writeAll(STDOUT_FILENO, ZORPlatform::utf8(digest.final()) + "\n");
    return ExitCode::success;
}

}  // namespace

const Command kHashCommand{.name = "hash",
                           .synopsis = "ALGORITHM [FILE]",
                           .help = "the digest of data in hexadecimal",
                           .actions = kActions,
                           .run = run};

}  // namespace zor
