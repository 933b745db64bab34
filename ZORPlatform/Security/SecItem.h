// SPDX-License-Identifier: Apache-2.0
#pragma once

// The item store: secrets of five classes, found again by their attributes. One file (HostEnvironment::itemStorePath)
// that several threads and processes share; values are sealed, see docs/item-store.md.
//
//     const SecItemDictionary item{{kSecClass, kSecClassGenericPassword},
//                                  {kSecAttrService, u"be.example.bank"},
//                                  {kSecAttrAccount, u"pin"}};
//     SecItemDictionary added = item;
//     added.set(kSecValueData, SecItemValue::Data{1, 2, 3, 4});
//     OSStatus status = SecItemAdd(added);
//
//     SecItemDictionary query = item;
//     query.set(kSecReturnData, true);
//     SecItemResult result;
//     if (SecItemCopyMatching(query, &result) == errSecSuccess) use(*result.as<SecItemResult::Data>());

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Security/SecBase.h>
#include <ZORPlatform/Security/SecItemDictionary.h>

#include <string_view>

namespace ZORPlatform {

/// @name Classes
/// An item of class identity stands for itself here: it has the primary key of its certificate and a value of the
/// application's, and is not put together from a certificate and a key.
/// @{
inline constexpr std::u16string_view kSecClass = u"class";
inline constexpr std::u16string_view kSecClassGenericPassword = u"genp";
inline constexpr std::u16string_view kSecClassInternetPassword = u"inet";
inline constexpr std::u16string_view kSecClassCertificate = u"cert";
inline constexpr std::u16string_view kSecClassKey = u"keys";
inline constexpr std::u16string_view kSecClassIdentity = u"idnt";
/// @}

/// @name Attributes of every class
/// @{
inline constexpr std::u16string_view kSecAttrAccessGroup = u"agrp";       ///< text; the empty one when not given
inline constexpr std::u16string_view kSecAttrAccessible = u"pdmn";        ///< one of the texts below
inline constexpr std::u16string_view kSecAttrCreationDate = u"cdat";      ///< date, set by the store
inline constexpr std::u16string_view kSecAttrModificationDate = u"mdat";  ///< date, set by the store
inline constexpr std::u16string_view kSecAttrLabel = u"labl";             ///< text
inline constexpr std::u16string_view kSecAttrSynchronizable = u"sync";    ///< number; 0 when not given
/// @}

/// @name Attributes of passwords
/// @{
inline constexpr std::u16string_view kSecAttrAccount = u"acct";      ///< text or bytes
inline constexpr std::u16string_view kSecAttrDescription = u"desc";  ///< text
inline constexpr std::u16string_view kSecAttrComment = u"icmt";      ///< text
inline constexpr std::u16string_view kSecAttrCreator = u"crtr";      ///< number; keys have it, too
inline constexpr std::u16string_view kSecAttrType = u"type";         ///< number
inline constexpr std::u16string_view kSecAttrIsInvisible = u"invi";  ///< boolean
inline constexpr std::u16string_view kSecAttrIsNegative = u"nega";   ///< boolean
/// @}

/// @name Attributes of generic passwords
/// @{
inline constexpr std::u16string_view kSecAttrService = u"svce";  ///< text or bytes
inline constexpr std::u16string_view kSecAttrGeneric = u"gena";  ///< bytes
/// @}

/// @name Attributes of internet passwords
/// @{
inline constexpr std::u16string_view kSecAttrSecurityDomain = u"sdmn";      ///< text or bytes
inline constexpr std::u16string_view kSecAttrServer = u"srvr";              ///< text or bytes
inline constexpr std::u16string_view kSecAttrProtocol = u"ptcl";            ///< text or bytes
inline constexpr std::u16string_view kSecAttrAuthenticationType = u"atyp";  ///< text or bytes
inline constexpr std::u16string_view kSecAttrPort = u"port";                ///< number
inline constexpr std::u16string_view kSecAttrPath = u"path";                ///< text or bytes
/// @}

/// @name Attributes of certificates and identities
/// @{
inline constexpr std::u16string_view kSecAttrCertificateType = u"ctyp";      ///< number
inline constexpr std::u16string_view kSecAttrCertificateEncoding = u"cenc";  ///< number
inline constexpr std::u16string_view kSecAttrSubject = u"subj";              ///< bytes
inline constexpr std::u16string_view kSecAttrIssuer = u"issr";               ///< bytes
inline constexpr std::u16string_view kSecAttrSerialNumber = u"slnr";         ///< bytes
inline constexpr std::u16string_view kSecAttrSubjectKeyID = u"skid";         ///< bytes
inline constexpr std::u16string_view kSecAttrPublicKeyHash = u"pkhh";        ///< bytes
/// @}

/// @name Attributes of keys
/// @{
inline constexpr std::u16string_view kSecAttrKeyClass = u"kcls";          ///< number, or its digits as text
inline constexpr std::u16string_view kSecAttrApplicationLabel = u"klbl";  ///< bytes
inline constexpr std::u16string_view kSecAttrApplicationTag = u"atag";    ///< bytes
inline constexpr std::u16string_view kSecAttrKeyType = u"type";           ///< number, or its digits as text
inline constexpr std::u16string_view kSecAttrKeySizeInBits = u"bsiz";     ///< number
inline constexpr std::u16string_view kSecAttrEffectiveKeySize = u"esiz";  ///< number
inline constexpr std::u16string_view kSecAttrStartDate = u"sdat";         ///< date
inline constexpr std::u16string_view kSecAttrEndDate = u"edat";           ///< date
inline constexpr std::u16string_view kSecAttrIsPermanent = u"perm";       ///< boolean
inline constexpr std::u16string_view kSecAttrCanEncrypt = u"encr";        ///< boolean
inline constexpr std::u16string_view kSecAttrCanDecrypt = u"decr";        ///< boolean
inline constexpr std::u16string_view kSecAttrCanDerive = u"drve";         ///< boolean
inline constexpr std::u16string_view kSecAttrCanSign = u"sign";           ///< boolean
inline constexpr std::u16string_view kSecAttrCanVerify = u"vrfy";         ///< boolean
inline constexpr std::u16string_view kSecAttrCanWrap = u"wrap";           ///< boolean
inline constexpr std::u16string_view kSecAttrCanUnwrap = u"unwp";         ///< boolean

inline constexpr std::u16string_view kSecAttrKeyClassPublic = u"0";
inline constexpr std::u16string_view kSecAttrKeyClassPrivate = u"1";
inline constexpr std::u16string_view kSecAttrKeyClassSymmetric = u"2";
inline constexpr std::u16string_view kSecAttrKeyTypeRSA = u"42";
/// @}

/// @name When an item may be read
/// Kept with the item and compared in queries; a Linux process is never locked, so nothing else follows from it.
/// @{
inline constexpr std::u16string_view kSecAttrAccessibleWhenUnlocked = u"ak";
inline constexpr std::u16string_view kSecAttrAccessibleWhenUnlockedThisDeviceOnly = u"aku";
inline constexpr std::u16string_view kSecAttrAccessibleAfterFirstUnlock = u"ck";
inline constexpr std::u16string_view kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly = u"cku";
inline constexpr std::u16string_view kSecAttrAccessibleAlways = u"dk";
inline constexpr std::u16string_view kSecAttrAccessibleAlwaysThisDeviceOnly = u"dku";
inline constexpr std::u16string_view kSecAttrAccessibleWhenPasscodeSetThisDeviceOnly = u"akpu";
/// @}

/// @name What is sought, and how it comes back
/// @{
inline constexpr std::u16string_view kSecMatchLimit = u"m_Limit";  ///< one of the two below, or a number from 1 on
inline constexpr std::u16string_view kSecMatchLimitOne = u"m_LimitOne";
inline constexpr std::u16string_view kSecMatchLimitAll = u"m_LimitAll";
inline constexpr std::u16string_view kSecReturnData = u"r_Data";                    ///< boolean
inline constexpr std::u16string_view kSecReturnAttributes = u"r_Attributes";        ///< boolean
inline constexpr std::u16string_view kSecReturnRef = u"r_Ref";                      ///< boolean
inline constexpr std::u16string_view kSecReturnPersistentRef = u"r_PersistentRef";  ///< boolean
inline constexpr std::u16string_view kSecValueData = u"v_Data";                     ///< bytes
inline constexpr std::u16string_view kSecValueRef = u"v_Ref";                       ///< SecKey or SecCertificate
inline constexpr std::u16string_view kSecValuePersistentRef = u"v_PersistentRef";   ///< bytes
/// @}

/// `SecItemAdd`
///
/// Adds one item. Its primary key, which no other item may have, is made of
/// - generic passwords: account, service;
/// - internet passwords: account, security domain, server, protocol, authentication type, port, path;
/// - keys: key class, application label, application tag, creator, type, size, effective size, start and end date;
/// - certificates and identities: certificate type, issuer, serial number;
///
/// and, for each of them, access group and synchronizability. What is not given counts as empty or 0. The other
/// attributes are kept with the item. The store sets both dates, and accessibility where it is not given:
/// `kSecAttrAccessibleWhenUnlocked`, for certificates `kSecAttrAccessibleAlways`.
///
/// @param attributes  class, attributes, and the value under `kSecValueData` (empty when not given). Return keys ask
///                    for a result. Text given for a bytes attribute stands for its UTF-8 bytes
/// @param result      what the return keys ask for, in the forms of `SecItemCopyMatching`; untouched when there are
///                    none, and on failure
/// @return `errSecSuccess` once the item has reached the disk, else a status of the store (below), and nothing has
///         changed:
///         `errSecDuplicateItem` when an item has that primary key; `errSecParam` without a class, for a value of the
///         wrong kind, a text with a lone surrogate and a match limit; `errSecNoSuchClass`; `errSecNoSuchAttr` for an
///         attribute that the class does not have
///
/// Thread-safe. Statuses of the store, for all four calls: `errSecIO` (disk full or read only, no right to write),
/// `errSecNotAvailable` (no key to be had, or another process has kept the store locked for ten seconds),
/// `errSecInteractionNotAllowed` (the key is locked away), `errSecAuthFailed` (the key is not this store's),
/// `errSecDecode` (the file or the item is damaged, or of a later release), `errSecAllocate`.
[[nodiscard]] ZOR_EXPORT OSStatus SecItemAdd(const SecItemDictionary& attributes, SecItemResult* result = nullptr);

/// `SecItemCopyMatching`
///
/// Finds items of a class whose attributes equal all those given; attributes not given match anything.
///
/// @param query   class or persistent reference, attributes, `kSecMatchLimit` (one when not given), return keys
/// @param result  one object, or an array of them for a limit above one, oldest first. An object is, for one return
///                key: the value's bytes (data), the attributes without the value, or twelve bytes (persistent
///                reference: the letters of the class and the number of the row, big-endian). For several it is a
///                dictionary of the attributes, if asked for, with `kSecValueData`, `kSecValuePersistentRef` added as
///                asked for. Untouched without return keys, and on failure. Of several matches the oldest is found
///                first
/// @return `errSecSuccess`; `errSecItemNotFound`; `errSecParam` also for `kSecValueData` in a query and a limit below
///         one; else as `SecItemAdd`
///
/// Thread-safe.
[[nodiscard]] ZOR_EXPORT OSStatus SecItemCopyMatching(const SecItemDictionary& query, SecItemResult* result = nullptr);

/// `SecItemUpdate`
///
/// Changes all items that the query finds: all of them, or none when the call fails.
///
/// @param query               as for `SecItemCopyMatching`, without limit and return keys
/// @param attributesToUpdate  the new values of attributes and, under `kSecValueData`, of the item; at least one
/// @return `errSecSuccess`; `errSecItemNotFound`; `errSecDuplicateItem` when an item would get the primary key of
///         another; `errSecParam`; else as `SecItemAdd`
///
/// Thread-safe.
[[nodiscard]] ZOR_EXPORT OSStatus SecItemUpdate(const SecItemDictionary& query,
                                                const SecItemDictionary& attributesToUpdate);

/// `SecItemDelete`
///
/// Deletes all items that the query finds.
///
/// @param query  as for `SecItemCopyMatching`, without limit and return keys
/// @return `errSecSuccess`; `errSecItemNotFound`; `errSecParam`; else as `SecItemAdd`
///
/// Thread-safe.
[[nodiscard]] ZOR_EXPORT OSStatus SecItemDelete(const SecItemDictionary& query);

}  // namespace ZORPlatform
