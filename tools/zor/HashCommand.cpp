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

constexpr std::array<std::pair<std::string_view, ZORHashType>, 6> kAlgorithms = {{{"md5", ZORHashType::MD5},
                                                                                  {"sha1", ZORHashType::SHA1},
                                                                                  {"sha224", ZORHashType::SHA224},
                                                                                  {"sha256", ZORHashType::SHA256},
                                                                                  {"sha384", ZORHashType::SHA384},
                                                                                  {"sha512", ZORHashType::SHA512}}};

ZORHashType algorithm(std::string_view name) {
    const auto found =
        std::find_if(kAlgorithms.begin(), kAlgorithms.end(), [name](const auto& known) { return known.first == name; });
    if (found == kAlgorithms.end()) throw UsageError("hash: md5, sha1, sha224, sha256, sha384 or sha512 is needed");
    return found->second;
}

ExitCode run(const Arguments& arguments) {
    const std::vector<std::string>& words = arguments.words;
    if (words.empty() || words.size() > 2) throw UsageError("hash: ALGORITHM [FILE] is needed");
    ZORFoundation::DigestStream digest(algorithm(words[0]));
    ByteInput input(words.size() == 2 ? words[1] : "", kPieceBytes);
    for (auto piece = input.next(); !piece.empty(); piece = input.next()) digest.update(piece);
    writeAll(STDOUT_FILENO, ZORPlatform::utf8(digest.final()) + "\n");
    return ExitCode::success;
}

}  // namespace

const Command kHashCommand{"hash", "ALGORITHM [FILE]", "the digest of data in hexadecimal", {}, false, run};

}  // namespace zor
