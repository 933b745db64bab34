// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/CommandTables.h>

#include <tools/zor/filter/Output.h>

#include <ZORFoundation/ErrorHandling/ZORErrorHandler.h>
#include <ZORPlatform/Foundation/NSError.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <unistd.h>

#include <charconv>

namespace zor {
namespace {

using ZORFoundation::ZORErrorHandler;
using ZORPlatform::NSError;

std::int64_t errorCode(std::string_view text) {
    std::int64_t code = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), code);
    if (read.ec != std::errc{} || read.ptr != text.data() + text.size()) {
        throw UsageError("CODE: a whole number of 64 bits is needed");
    }
    return code;
}

ExitCode run(const Arguments& arguments) {
    const std::vector<std::string>& words = arguments.words;
    if (words.size() < 2 || words.size() > 3) throw UsageError("error-code: DOMAIN CODE [DESCRIPTION] is needed");
    NSError::UserInfo userInfo;
    if (words.size() == 3) userInfo.emplace(ZORPlatform::NSLocalizedDescriptionKey, ZORPlatform::utf16(words[2]));
    const NSError error(ZORPlatform::utf16(words[0]), errorCode(words[1]), userInfo);
    writeAll(STDOUT_FILENO, ZORPlatform::utf8(ZORErrorHandler::mappedErrorCodeFromError(error)) + "\n");
    return ZORErrorHandler::isErrorDomainMappedForError(error) ? ExitCode::success : ExitCode::someInvalid;
}

}  // namespace

const Command kErrorCodeCommand{
    .name = "error-code", .synopsis = "DOMAIN CODE [DESCRIPTION]", .help = "the short code of an error", .run = run};

}  // namespace zor
