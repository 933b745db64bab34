// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSError.h>

#include <ZORPlatform/Foundation/Utf.h>

#include <utility>

namespace ZORPlatform {

struct NSError::Content {
    std::u16string domain;
    std::int64_t code;
    UserInfo userInfo;
};

namespace {

std::optional<std::u16string> textUnder(const NSError::UserInfo& userInfo, std::u16string_view key) {
    const auto found = userInfo.find(key);
    if (found == userInfo.end()) return std::nullopt;
    return found->second;
}

}  // namespace

NSError::NSError(std::u16string_view domain, std::int64_t code, std::optional<UserInfo> userInfo)
    : content_(std::make_shared<const Content>(
          Content{std::u16string(domain), code, userInfo ? std::move(*userInfo) : UserInfo{}})) {}

const std::u16string& NSError::domain() const noexcept { return content_->domain; }
std::int64_t NSError::code() const noexcept { return content_->code; }
const NSError::UserInfo& NSError::userInfo() const noexcept { return content_->userInfo; }

std::optional<std::u16string> NSError::localizedDescription() const {
    return textUnder(userInfo(), NSLocalizedDescriptionKey);
}

std::optional<std::u16string> NSError::localizedFailureReason() const {
    return textUnder(userInfo(), NSLocalizedFailureReasonErrorKey);
}

std::string NSError::description() const {
    std::string text = utf8(domain()) + " " + std::to_string(code());
    if (const auto found = userInfo().find(NSLocalizedDescriptionKey); found != userInfo().end()) {
        text += ": " + utf8(found->second);
    }
    return text;
}

std::size_t NSError::hash() const noexcept {
    // Equal errors agree on domain and code; user information is left to the comparison.
    return std::hash<std::u16string>{}(domain()) ^ (std::hash<std::int64_t>{}(code()) * 0x9E3779B97F4A7C15U);
}

bool NSError::isEqual(const NSError& other) const noexcept {
    return content_ == other.content_ ||
           (code() == other.code() && domain() == other.domain() && userInfo() == other.userInfo());
}

}  // namespace ZORPlatform
