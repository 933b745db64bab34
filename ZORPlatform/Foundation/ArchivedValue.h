// SPDX-License-Identifier: Apache-2.0
#pragma once

// What a keyed archive can hold.

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSCoding.h>
#include <ZORPlatform/Foundation/NSDate.h>
#include <ZORPlatform/Foundation/NSNull.h>
#include <ZORPlatform/Foundation/NSNumber.h>

#include <concepts>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace ZORPlatform {

/// A value of a keyed archive: number, text, data, date, array, dictionary with texts as keys, set, the null object, or
/// an object of a type of the application's. A value type, except that objects of the application's are shared. Equal
/// when kind and content are; objects of the application's when they are the same object.
class ArchivedValue {
public:
    using Data = std::vector<std::uint8_t>;
    using Array = std::vector<ArchivedValue>;
    using Dictionary = std::map<std::u16string, ArchivedValue, std::less<>>;
    /// Unordered for the platform; kept in the order of the archive.
    struct Set {
        std::vector<ArchivedValue> members;
        friend bool operator==(const Set&, const Set&) = default;
    };
    using Object = std::shared_ptr<NSCoding>;

    ArchivedValue(NSNumber number) : content_(number) {}
    template <class Number>
    requires std::integral<Number> || std::floating_point<Number> ArchivedValue(Number number)
        : content_(NSNumber(number)) {}
    ArchivedValue(std::u16string text) : content_(std::move(text)) {}
    ArchivedValue(std::u16string_view text) : content_(std::u16string(text)) {}
    ArchivedValue(const char16_t* text) : content_(std::u16string(text)) {}
    ArchivedValue(Data data) : content_(std::move(data)) {}
    ArchivedValue(NSDate date) : content_(date) {}
    ArchivedValue(Array array) : content_(std::move(array)) {}
    ArchivedValue(Dictionary dictionary) : content_(std::move(dictionary)) {}
    ArchivedValue(Set set) : content_(std::move(set)) {}
    ArchivedValue(NSNull null) : content_(null) {}
    /// A null pointer counts as the null object.
    template <std::derived_from<NSCoding> Class>
    ArchivedValue(std::shared_ptr<Class> object) {
        if (object) {
            content_ = Object(std::move(object));
        } else {
            content_ = NSNull();
        }
    }

    /// The content when it is of that kind, else a null pointer. `Kind` is one of `NSNumber`, `std::u16string`, `Data`,
    /// `NSDate`, `Array`, `Dictionary`, `Set`, `NSNull`, `Object`.
    template <class Kind>
    [[nodiscard]] const Kind* as() const noexcept {
        return std::get_if<Kind>(&content_);
    }

    template <class Visitor>
    decltype(auto) visit(Visitor&& visitor) const {
        return std::visit(std::forward<Visitor>(visitor), content_);
    }

    friend bool operator==(const ArchivedValue&, const ArchivedValue&) = default;

private:
    std::variant<NSNull, NSNumber, std::u16string, Data, NSDate, Array, Dictionary, Set, Object> content_;
};

}  // namespace ZORPlatform
