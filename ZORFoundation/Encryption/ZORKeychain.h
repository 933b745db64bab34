// SPDX-License-Identifier: Apache-2.0
#pragma once

// Secrets under keys of the application's: a small store of values over the item store, where each value is one generic
// password of a service.
//
//     ZORKeychain::setup(NSBundle::mainBundle());
//     ZORKeychain& keychain = ZORKeychain::standard();
//     bool saved = keychain.set(u"1234", u"pin");
//     keychain.set(3, u"tries", KeychainItemAccessibility::always);
//     keychain.string(u"pin");           // u"1234"
//     keychain.integerValue(u"tries");   // 3

#include <ZORFoundation/Encryption/KeychainItemAccessibility.h>
#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/ArchivedValue.h>
#include <ZORPlatform/Foundation/NSBundle.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace ZORPlatform {
class SecItemDictionary;
}

namespace ZORFoundation {

using ZORPlatform::ArchivedValue;
using ZORPlatform::NSBundle;

/// A key-value store in the item store. Every operation may be overridden, and those that build on others call them
/// through the object's own class.
///
/// Keys are any text; the item's account and generic attributes hold their UTF-8 bytes. A key with a lone surrogate has
/// none, so that its item has neither attribute: all such keys are one.
///
/// An accessibility is stored with a value. Given to any other operation, it has to be the one that is stored, else the
/// key counts as missing; not given, any will do.
///
/// Every failure of the item store is reported as false or absent. Objects hold nothing that changes: several threads,
/// and several processes, may use one at once.
class ZOR_EXPORT ZORKeychain {
public:
    using Accessibility = std::optional<KeychainItemAccessibility>;
    using Bytes = std::vector<std::uint8_t>;

    /// `setup(bundle:)`: gives the bundle whose identifier is the service of `private_()`. The first call counts, and
    /// has to come before the first use of `private_()` or `standard()`; later ones are ignored.
    static void setup(NSBundle bundle);

    /// `private`: the application's own store; its service is the identifier of the bundle given to `setup`, and is
    /// fixed from the first use on. It is never destroyed. Stops the process when no bundle was given or it has no
    /// identifier.
    [[nodiscard]] static ZORKeychain& private_();
    /// `standard`: the same object as `private_()`.
    [[nodiscard]] static ZORKeychain& standard();
    /// `public`: the store of the service "ZorKeychainWrapper". Never destroyed.
    [[nodiscard]] static ZORKeychain& public_();

    /// `wipeKeychain()`: deletes all items of all five classes in the item store, not only those of this class. What
    /// cannot be deleted stays, without a word.
    static void wipeKeychain();

    /// `init(serviceName:accessGroup:)`
    explicit ZORKeychain(std::u16string serviceName, std::optional<std::u16string> accessGroup = std::nullopt);
    virtual ~ZORKeychain();
    ZORKeychain(const ZORKeychain&) = delete;
    ZORKeychain& operator=(const ZORKeychain&) = delete;

    /// `serviceName`
    [[nodiscard]] const std::u16string& serviceName() const noexcept { return serviceName_; }
    /// `accessGroup`: absent: items of all groups are found, and new ones belong to none.
    [[nodiscard]] const std::optional<std::u16string>& accessGroup() const noexcept { return accessGroup_; }

    /// `data(forKey:withAccessibility:)`: the stored bytes, the caller's to wipe; `std::nullopt` when there are none.
    [[nodiscard]] virtual std::optional<Bytes> data(std::u16string_view forKey,
                                                    Accessibility withAccessibility = std::nullopt) const;
    /// `dataRef(forKey:withAccessibility:)`: the persistent reference of the item, twelve bytes.
    [[nodiscard]] virtual std::optional<Bytes> dataRef(std::u16string_view forKey,
                                                       Accessibility withAccessibility = std::nullopt) const;
    /// `hasValue(forKey:withAccessibility:)`: whether `data` gives bytes.
    [[nodiscard]] virtual bool hasValue(std::u16string_view forKey,
                                        Accessibility withAccessibility = std::nullopt) const;

    /// `object(forKey:withAccessibility:)`: what the stored bytes hold as a keyed archive; `std::nullopt` when there
    /// are none, or they are no archive.
    [[nodiscard]] virtual std::optional<ArchivedValue> object(std::u16string_view forKey,
                                                              Accessibility withAccessibility = std::nullopt) const;
    /// `integer(forKey:withAccessibility:)`: the stored number, of whatever type, as `NSNumber::integerValue` gives it;
    /// `std::nullopt` when `object` gives no number.
    [[nodiscard]] virtual std::optional<std::int64_t> integer(std::u16string_view forKey,
                                                              Accessibility withAccessibility = std::nullopt) const;
    /// `float(forKey:withAccessibility:)`: as `integer`, through `NSNumber::floatValue`.
    [[nodiscard]] virtual std::optional<float> float_(std::u16string_view forKey,
                                                      Accessibility withAccessibility = std::nullopt) const;
    /// `double(forKey:withAccessibility:)`: as `integer`, through `NSNumber::doubleValue`.
    [[nodiscard]] virtual std::optional<double> double_(std::u16string_view forKey,
                                                        Accessibility withAccessibility = std::nullopt) const;
    /// `bool(forKey:withAccessibility:)`: as `integer`, through `NSNumber::boolValue`.
    [[nodiscard]] virtual std::optional<bool> bool_(std::u16string_view forKey,
                                                    Accessibility withAccessibility = std::nullopt) const;
    /// `string(forKey:withAccessibility:)`: the stored bytes as text; `std::nullopt` when they are no UTF-8.
    [[nodiscard]] virtual std::optional<std::u16string> string(std::u16string_view forKey,
                                                               Accessibility withAccessibility = std::nullopt) const;

    /// `boolValue(forKey:withAccessibility:)`: `bool_`, or false.
    [[nodiscard]] virtual bool boolValue(std::u16string_view forKey,
                                         Accessibility withAccessibility = std::nullopt) const;
    /// `integerValue(forKey:withAccessibility:)`: `integer`, or 0.
    [[nodiscard]] virtual std::int64_t integerValue(std::u16string_view forKey,
                                                    Accessibility withAccessibility = std::nullopt) const;
    /// `stringValue(forKey:withAccessibility:)`: `string`, or the empty text.
    [[nodiscard]] virtual std::u16string stringValue(std::u16string_view forKey,
                                                     Accessibility withAccessibility = std::nullopt) const;

    /// `accessibilityOfKey(_:)`: the accessibility stored with the key's value; `std::nullopt` when there is none.
    [[nodiscard]] virtual Accessibility accessibilityOfKey(std::u16string_view key) const;

    /// `set(_:forKey:withAccessibility:)`
    ///
    /// Stores a value under a key. A key that is new gets the accessibility given, else `whenUnlocked`. The value of a
    /// key that is there is replaced, its accessibility stays; when one is given and is another than the stored one,
    /// nothing changes and the result is false.
    ///
    /// @param value  a boolean; an integer, at most 2^63−1, else the process stops; a float or a double; a text that
    ///               holds no lone surrogate; bytes; or what an ArchivedValue can be made from. Numbers and archivable
    ///               values are stored as keyed archives, a text as UTF-8, bytes as they are
    /// @return whether the value is stored, and will survive a loss of power
    template <class Value>
    bool set(const Value& value, std::u16string_view forKey, Accessibility withAccessibility = std::nullopt);

    /// `removeObject(forKey:withAccessibility:)`: @return whether there was a value, and it is gone
    virtual bool removeObject(std::u16string_view forKey, Accessibility withAccessibility = std::nullopt);
    /// `remove(key:withAccessibility:)`: the same as `removeObject`.
    virtual bool remove(std::u16string_view key, Accessibility withAccessibility = std::nullopt);
    /// `removeAllKeys()`: removes all values of the service, within the access group if there is one. @return whether
    /// there were any, and they are gone
    virtual bool removeAllKeys();

protected:
    // What `set` calls, one for each type, for a derived class to override. All others end in `setData`.

    [[nodiscard]] virtual bool setBool(bool value, std::u16string_view forKey, Accessibility withAccessibility);
    [[nodiscard]] virtual bool setInteger(std::int64_t value, std::u16string_view forKey,
                                          Accessibility withAccessibility);
    [[nodiscard]] virtual bool setFloat(float value, std::u16string_view forKey, Accessibility withAccessibility);
    [[nodiscard]] virtual bool setDouble(double value, std::u16string_view forKey, Accessibility withAccessibility);
    [[nodiscard]] virtual bool setString(std::u16string_view value, std::u16string_view forKey,
                                         Accessibility withAccessibility);
    [[nodiscard]] virtual bool setObject(const ArchivedValue& value, std::u16string_view forKey,
                                         Accessibility withAccessibility);
    [[nodiscard]] virtual bool setData(std::span<const std::uint8_t> value, std::u16string_view forKey,
                                       Accessibility withAccessibility);

    // The public part ends here.
private:
    [[nodiscard]] ZORPlatform::SecItemDictionary setupKeychainQueryDictionary(std::u16string_view forKey,
                                                                              Accessibility withAccessibility) const;
    [[nodiscard]] std::optional<Bytes> bytesOfItem(std::u16string_view returnKey, std::u16string_view forKey,
                                                   Accessibility withAccessibility) const;
    [[nodiscard]] bool setArchive(const ArchivedValue& value, std::u16string_view forKey,
                                  Accessibility withAccessibility);
    [[nodiscard]] bool update(std::span<const std::uint8_t> value, std::u16string_view forKey,
                              Accessibility withAccessibility) const;

    std::u16string serviceName_;
    std::optional<std::u16string> accessGroup_;
};

template <class Value>
bool ZORKeychain::set(const Value& value, std::u16string_view forKey, Accessibility withAccessibility) {
    if constexpr (std::same_as<Value, bool>) {
        return setBool(value, forKey, withAccessibility);
    } else if constexpr (std::integral<Value>) {
        if (!std::in_range<std::int64_t>(value)) {
            ZORPlatform::preconditionFailure("ZORKeychain set: an integer is at most 2^63-1");
        }
        return setInteger(static_cast<std::int64_t>(value), forKey, withAccessibility);
    } else if constexpr (std::same_as<Value, float>) {
        return setFloat(value, forKey, withAccessibility);
    } else if constexpr (std::same_as<Value, double>) {
        return setDouble(value, forKey, withAccessibility);
    } else if constexpr (std::is_arithmetic_v<Value> || std::is_null_pointer_v<Value>) {
        static_assert(!std::same_as<Value, Value>, "ZORKeychain stores no value of this type");
    } else if constexpr (std::convertible_to<const Value&, std::u16string_view>) {
        return setString(value, forKey, withAccessibility);
    } else if constexpr (std::convertible_to<const Value&, std::span<const std::uint8_t>>) {
        return setData(value, forKey, withAccessibility);
    } else if constexpr (std::convertible_to<const Value&, ArchivedValue>) {
        return setObject(value, forKey, withAccessibility);
    } else {
        static_assert(!std::same_as<Value, Value>, "ZORKeychain stores no value of this type");
    }
}

}  // namespace ZORFoundation
