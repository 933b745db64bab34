// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSKeyedArchiver.h>
#include <ZORPlatform/Foundation/NSPropertyListSerialization.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace ZORPlatform {
namespace {

using Array = ArchivedValue::Array;
using Bytes = std::vector<std::uint8_t>;
using Data = ArchivedValue::Data;
using Dictionary = ArchivedValue::Dictionary;
using List = PropertyListValue;

Bytes bytesOfHexadecimal(const std::string& digits) {
    Bytes bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

std::optional<ArchivedValue> roundTrip(const ArchivedValue& value) {
    const auto bytes = NSKeyedArchiver::archivedDataWithRootObject(value);
    if (!bytes) return std::nullopt;
    return NSKeyedUnarchiver::unarchiveObjectWithData(*bytes);
}

List parsed(const ArchivedValue& value) {
    return *NSPropertyListSerialization::propertyListWithData(*NSKeyedArchiver::archivedDataWithRootObject(value));
}

std::optional<ArchivedValue> unarchive(const List& archive) {
    return NSKeyedUnarchiver::unarchiveObjectWithData(
        *NSPropertyListSerialization::dataWithPropertyList(archive, NSPropertyListFormat::binary_v1_0));
}

struct Sample {
    ArchivedValue value;
    std::string hexadecimal;
};

class PlatformArchive : public testing::TestWithParam<Sample> {};

TEST_P(PlatformArchive, IsRead) {
    EXPECT_EQ(NSKeyedUnarchiver::unarchiveObjectWithData(bytesOfHexadecimal(GetParam().hexadecimal)), GetParam().value);
}

TEST_P(PlatformArchive, HasTheSameObjectsAsOurs) {
    // Equal as property lists: the order of keys is the writer's own affair.
    EXPECT_EQ(NSPropertyListSerialization::propertyListWithData(bytesOfHexadecimal(GetParam().hexadecimal)),
              parsed(GetParam().value));
}

TEST_P(PlatformArchive, CutShortIsAbsent) {
    const Bytes whole = bytesOfHexadecimal(GetParam().hexadecimal);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(NSKeyedUnarchiver::unarchiveObjectWithData(cut), std::nullopt);
    }
}

// Archives in the layout of the platform's own writer.
INSTANTIATE_TEST_SUITE_P(
    NSKeyedArchiver, PlatformArchive,
    testing::Values(
        Sample{NSNumber(42),
               "62706c6973743030d4010203040506090a582476657273696f6e58246f626a65637473592461726368697665725424746f70120"
               "00186a0a2070855246e756c6c102a5f100f4e534b657965644172636869766572d10b0c54726f6f74800108111a232d32373a40"
               "4254575c0000000000000101000000000000000d0000000000000000000000000000005e"},
        Sample{NSNumber(-1),
               "62706c6973743030d4010203040506090a582476657273696f6e58246f626a65637473592461726368697665725424746f70120"
               "00186a0a2070855246e756c6c13ffffffffffffffff5f100f4e534b657965644172636869766572d10b0c54726f6f7480010811"
               "1a232d32373a40495b5e630000000000000101000000000000000d00000000000000000000000000000065"},
        Sample{NSNumber(true),
               "62706c6973743030d4010203040506090a582476657273696f6e58246f626a65637473592461726368697665725424746f70120"
               "00186a0a2070855246e756c6c095f100f4e534b657965644172636869766572d10b0c54726f6f74800108111a232d32373a4041"
               "53565b0000000000000101000000000000000d0000000000000000000000000000005d"},
        Sample{NSNumber(2.5F),
               "62706c6973743030d4010203040506090a582476657273696f6e58246f626a65637473592461726368697665725424746f70120"
               "00186a0a2070855246e756c6c22402000005f100f4e534b657965644172636869766572d10b0c54726f6f74800108111a232d32"
               "373a4045575a5f0000000000000101000000000000000d00000000000000000000000000000061"},
        Sample{NSNumber(1.5),
               "62706c6973743030d4010203040506090a582476657273696f6e58246f626a65637473592461726368697665725424746f70120"
               "00186a0a2070855246e756c6c233ff80000000000005f100f4e534b657965644172636869766572d10b0c54726f6f7480010811"
               "1a232d32373a40495b5e630000000000000101000000000000000d00000000000000000000000000000065"},
        Sample{u"\u00E9",
               "62706c6973743030d4010203040506090a582476657273696f6e58246f626a65637473592461726368697665725424746f70120"
               "00186a0a2070855246e756c6c6100e95f100f4e534b657965644172636869766572d10b0c54726f6f74800108111a232d32373a"
               "404355585d0000000000000101000000000000000d0000000000000000000000000000005f"},
        Sample{Array{1, u"a"},
               "62706c6973743030d40102030405061718582476657273696f6e58246f626a65637473592461726368697665725424746f70120"
               "00186a0a507080f101155246e756c6cd2090a0b0e5a4e532e6f626a656374735624636c617373a20c0d80028003800410015161"
               "d2121314155a24636c6173736e616d655824636c6173736573574e534172726179a21416584e534f626a6563745f100f4e534b6"
               "57965644172636869766572d1191a54726f6f74800108111a232d32373d4348535a5d5f616365676c7780888b94a6a9ae000000"
               "0000000101000000000000001b000000000000000000000000000000b0"},
        Sample{Dictionary{{u"k", 7}},
               "62706c6973743030d4010203040506191a582476657273696f6e58246f626a65637473592461726368697665725424746f70120"
               "00186a0a5070811121355246e756c6cd3090a0b0c0e10574e532e6b6579735a4e532e6f626a656374735624636c617373a10d80"
               "02a10f80038004516b1007d2141516175a24636c6173736e616d655824636c61737365735c4e5344696374696f6e617279a2161"
               "8584e534f626a6563745f100f4e534b657965644172636869766572d11b1c54726f6f74800108111a232d32373d434a525d6466"
               "686a6c6e707277828b989ba4b6b9be0000000000000101000000000000001d000000000000000000000000000000c0"},
        Sample{NSNull(),
               "62706c6973743030d40102030405061112582476657273696f6e58246f626a65637473592461726368697665725424746f70120"
               "00186a0a307080b55246e756c6cd1090a5624636c6173738002d20c0d0e0f5a24636c6173736e616d655824636c617373657356"
               "4e534e756c6ca20e10584e534f626a6563745f100f4e534b657965644172636869766572d1131454726f6f74800108111a232d3"
               "2373b41444b4d525d666d70798b8e930000000000000101000000000000001500000000000000000000000000000095"}));

TEST(NSKeyedArchiver, EveryKindComesBack) {
    const ArchivedValue value = Dictionary{
        {u"numbers", Array{true, false, 0, 255, 256, 4294967295, 4294967296, -1, 2.5F, 0.1, -0.0}},
        {u"texts", Array{u"", u"caf\u00E9 \U0001F600", u"$null", std::u16string(1000, u'x')}},
        {u"data", Array{Data{}, Data{0, 255}}},
        {u"date", NSDate::sinceReferenceDate(-699999999.75)},
        {u"set", ArchivedValue::Set{{1, u"a"}}},
        {u"null", NSNull()},
        {u"empty", Array{Array{}, Dictionary{}}},
    };
    EXPECT_EQ(roundTrip(value), value);
}

TEST(NSKeyedArchiver, WritesADateBeforeItsClass) {
    const List::Dictionary dateClass{{u"$classname", u"NSDate"}, {u"$classes", List::Array{u"NSDate", u"NSObject"}}};
    EXPECT_EQ(
        parsed(NSDate::sinceReferenceDate(1.5)),
        List(List::Dictionary{
            {u"$archiver", u"NSKeyedArchiver"},
            {u"$objects",
             List::Array{u"$null", List::Dictionary{{u"NS.time", 1.5}, {u"$class", PropertyListUid{2}}}, dateClass}},
            {u"$top", List::Dictionary{{u"root", PropertyListUid{1}}}},
            {u"$version", 100000}}));
}

TEST(NSKeyedArchiver, ReadsMutableKindsAsTheirImmutableOnes) {
    const auto archive = [](List::Dictionary fields, const char16_t* mutableName, const char16_t* name) {
        fields[u"$class"] = PropertyListUid{2};
        return List(List::Dictionary{
            {u"$archiver", u"NSKeyedArchiver"},
            {u"$objects", List::Array{u"$null", fields,
                                      List::Dictionary{{u"$classname", mutableName},
                                                       {u"$classes", List::Array{mutableName, name, u"NSObject"}}},
                                      u"held"}},
            {u"$top", List::Dictionary{{u"root", PropertyListUid{1}}}}});
    };
    EXPECT_EQ(unarchive(archive({{u"NS.string", u"text"}}, u"NSMutableString", u"NSString")), ArchivedValue(u"text"));
    EXPECT_EQ(unarchive(archive({{u"NS.data", List::Data{1}}}, u"NSMutableData", u"NSData")), ArchivedValue(Data{1}));
    EXPECT_EQ(unarchive(archive({{u"NS.objects", List::Array{PropertyListUid{3}}}}, u"NSMutableArray", u"NSArray")),
              ArchivedValue(Array{u"held"}));
}

TEST(NSKeyedArchiver, ReadsTheXmlForm) {
    const List archive = parsed(Dictionary{{u"k", Array{7, u"seven"}}});
    const auto xml = NSPropertyListSerialization::dataWithPropertyList(archive, NSPropertyListFormat::xml_v1_0);
    EXPECT_EQ(NSKeyedUnarchiver::unarchiveObjectWithData(*xml), ArchivedValue(Dictionary{{u"k", Array{7, u"seven"}}}));
}

List::Dictionary frame(List::Array objects, List root) {
    return {{u"$archiver", u"NSKeyedArchiver"},
            {u"$objects", std::move(objects)},
            {u"$top", List::Dictionary{{u"root", std::move(root)}}},
            {u"$version", 100000}};
}

TEST(NSKeyedArchiver, ForeignOrDamagedArchivesAreAbsent) {
    const List::Dictionary array{{u"$classname", u"NSArray"}, {u"$classes", List::Array{u"NSArray", u"NSObject"}}};
    EXPECT_EQ(unarchive(frame({u"$null", 1}, PropertyListUid{0})), std::nullopt) << "root is nothing";
    EXPECT_EQ(unarchive(frame({u"$null", 1}, PropertyListUid{2})), std::nullopt) << "root is outside";
    EXPECT_EQ(unarchive(frame({u"$null", List::Dictionary{{u"$class", PropertyListUid{9}}}}, PropertyListUid{1})),
              std::nullopt)
        << "class is outside";
    EXPECT_EQ(unarchive(frame(
                  {u"$null",
                   List::Dictionary{{u"NS.objects", List::Array{PropertyListUid{1}}}, {u"$class", PropertyListUid{2}}},
                   array},
                  PropertyListUid{1})),
              std::nullopt)
        << "array holds itself";
    List::Dictionary foreign = frame({u"$null", 1}, PropertyListUid{1});
    foreign[u"$archiver"] = u"SomeoneElse";
    EXPECT_EQ(unarchive(foreign), std::nullopt);
    EXPECT_EQ(unarchive(List::Array{}), std::nullopt);
    const Bytes word{'w', 'o', 'r', 'd'};
    EXPECT_EQ(NSKeyedUnarchiver::unarchiveObjectWithData(word), std::nullopt);
}

TEST(NSKeyedArchiver, RefusesAnArchiveThatSharesItselfIntoABomb) {
    List::Array objects{
        u"$null", List::Dictionary{{u"$classname", u"NSArray"}, {u"$classes", List::Array{u"NSArray", u"NSObject"}}}};
    constexpr std::uint64_t kLevels = 40;
    for (std::uint64_t level = 0; level < kLevels; ++level) {
        const List next = PropertyListUid{objects.size() + 1};
        objects.emplace_back(
            List::Dictionary{{u"NS.objects", List::Array{next, next}}, {u"$class", PropertyListUid{1}}});
    }
    objects.emplace_back(u"leaf");
    EXPECT_EQ(unarchive(frame(std::move(objects), PropertyListUid{2})), std::nullopt);
}

TEST(NSKeyedArchiver, NestsAtMost512Levels) {
    ArchivedValue value = Array{};
    for (int level = 1; level < 512; ++level) value = Array{std::move(value)};
    EXPECT_EQ(roundTrip(value), value);
    EXPECT_EQ(NSKeyedArchiver::archivedDataWithRootObject(Array{std::move(value)}), std::nullopt);
}

class Account : public NSCoding {
public:
    Account(std::u16string owner, std::int64_t balance) : name(std::move(owner)), cents(balance) {}
    explicit Account(const KeyedDecoder& decoder) {
        const auto storedName = decoder.decode(u"name");
        const auto storedCents = decoder.decode(u"cents");
        if (!storedName || storedName->as<std::u16string>() == nullptr)
            throw std::runtime_error("an account has a name");
        name = *storedName->as<std::u16string>();
        cents = storedCents && storedCents->as<NSNumber>() != nullptr ? storedCents->as<NSNumber>()->integerValue() : 0;
        if (const auto other = decoder.decode(u"partner")) {
            if (const auto* object = other->as<ArchivedValue::Object>()) {
                partner = std::dynamic_pointer_cast<Account>(*object);
            }
        }
    }
    void encodeWithCoder(KeyedEncoder& encoder) const override {
        if (!name.empty()) encoder.encode(u"name", name);
        encoder.encode(u"cents", cents);
        if (partner) encoder.encode(u"partner", partner);
    }

    std::u16string name;
    std::int64_t cents = 0;
    std::shared_ptr<Account> partner;
};

class SavingsAccount : public Account {
public:
    using Account::Account;
};

const NSCodingRegistration<Account> kAccount(u"Account");
const NSCodingRegistration<SavingsAccount, Account> kSavingsAccount(u"SavingsAccount");

TEST(NSKeyedArchiver, ObjectsOfTheApplicationComeBackAsTheirOwnClass) {
    const auto account = std::make_shared<SavingsAccount>(u"caf\u00E9", 1050);
    const std::optional<ArchivedValue> value = roundTrip(account);
    ASSERT_TRUE(value && value->as<ArchivedValue::Object>());
    const auto back = std::dynamic_pointer_cast<SavingsAccount>(*value->as<ArchivedValue::Object>());
    ASSERT_TRUE(back);
    EXPECT_EQ(back->name, u"caf\u00E9");
    EXPECT_EQ(back->cents, 1050);
}

TEST(NSKeyedArchiver, WritesTheClassChainOfAnObject) {
    const List archive = parsed(std::make_shared<SavingsAccount>(u"a", 1));
    const auto& objects = *archive.as<List::Dictionary>()->at(u"$objects").as<List::Array>();
    EXPECT_EQ(objects.back(),
              List(List::Dictionary{{u"$classname", u"SavingsAccount"},
                                    {u"$classes", List::Array{u"SavingsAccount", u"Account", u"NSObject"}}}));
}

TEST(NSKeyedArchiver, AnObjectHeldTwiceIsOneObjectAgain) {
    const auto account = std::make_shared<Account>(u"a", 1);
    const std::optional<ArchivedValue> value = roundTrip(Array{account, account});
    const auto& elements = *value->as<Array>();
    EXPECT_EQ(elements[0], elements[1]);
}

TEST(NSKeyedArchiver, AnObjectThatLeadsBackToItselfIsWrittenAndReadWithoutTheLastStep) {
    const auto first = std::make_shared<Account>(u"first", 1);
    const auto second = std::make_shared<Account>(u"second", 2);
    first->partner = second;
    second->partner = first;
    const std::optional<ArchivedValue> value = roundTrip(first);
    second->partner.reset();
    ASSERT_TRUE(value);
    const auto back = std::dynamic_pointer_cast<Account>(*value->as<ArchivedValue::Object>());
    EXPECT_EQ(back->partner->name, u"second");
    EXPECT_EQ(back->partner->partner, nullptr);
}

TEST(NSKeyedArchiver, AnObjectThatRefusesItsContentIsAbsent) {
    EXPECT_EQ(roundTrip(std::make_shared<Account>(u"", 1)), std::nullopt);
}

class Unregistered : public NSCoding {
    void encodeWithCoder(KeyedEncoder&) const override {}
};

TEST(NSKeyedArchiver, AnObjectOfAnUnregisteredClassCannotBeArchived) {
    EXPECT_EQ(NSKeyedArchiver::archivedDataWithRootObject(std::make_shared<Unregistered>()), std::nullopt);
}

}  // namespace
}  // namespace ZORPlatform
