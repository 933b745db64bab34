// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/NSPropertyListSerialization.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace ZORPlatform {
namespace {

using Dictionary = PropertyListValue::Dictionary;
using Array = PropertyListValue::Array;
using Data = PropertyListValue::Data;
using Bytes = std::vector<std::uint8_t>;

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";

Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

std::optional<PropertyListValue> read(std::string_view text) {
    // Exactly as large as the text, so that a read past its end is seen.
    const Bytes bytes = bytesOf(text);
    return NSPropertyListSerialization::propertyListWithData(bytes);
}

std::optional<PropertyListValue> readElement(const std::string& element) {
    return read("<plist>" + element + "</plist>");
}

std::optional<std::string> xml(const PropertyListValue& list) {
    const auto bytes = NSPropertyListSerialization::dataWithPropertyList(list, NSPropertyListFormat::xml_v1_0);
    if (!bytes) return std::nullopt;
    return std::string(bytes->begin(), bytes->end());
}

std::string xmlBody(const PropertyListValue& list) {
    const std::string document = xml(list).value_or("");
    return document.substr(kHead.size(), document.size() - kHead.size() - std::string_view("</plist>\n").size());
}

std::optional<Bytes> binary(const PropertyListValue& list) {
    return NSPropertyListSerialization::dataWithPropertyList(list, NSPropertyListFormat::binary_v1_0);
}

PropertyListValue nested(int levels) {
    PropertyListValue value = Array{};
    for (int i = 1; i < levels; ++i) value = Array{std::move(value)};
    return value;
}

TEST(PropertyListXmlWriter, WritesThePlatformsLayout) {
    EXPECT_EQ(xml(Dictionary{{u"b", true}, {u"a", 1}}), std::string(kHead) +
                                                            "<dict>\n"
                                                            "\t<key>a</key>\n"
                                                            "\t<integer>1</integer>\n"
                                                            "\t<key>b</key>\n"
                                                            "\t<true/>\n"
                                                            "</dict>\n"
                                                            "</plist>\n");
}

TEST(PropertyListXmlWriter, WritesEmptyContainersAndTextsInTheirShortForms) {
    EXPECT_EQ(xmlBody(Dictionary{}), "<dict/>\n");
    EXPECT_EQ(xmlBody(Array{}), "<array/>\n");
    EXPECT_EQ(xmlBody(u""), "<string></string>\n");
    EXPECT_EQ(xmlBody(Data{}), "<data>\n</data>\n");
    EXPECT_EQ(xmlBody(false), "<false/>\n");
}

TEST(PropertyListXmlWriter, SortsKeysByUnit) {
    EXPECT_EQ(xmlBody(Dictionary{{u"b", true}, {u"\u00E9", true}, {u"B", true}, {u"", true}}),
              "<dict>\n\t<key></key>\n\t<true/>\n\t<key>B</key>\n\t<true/>\n\t<key>b</key>\n\t<true/>\n"
              "\t<key>\u00E9</key>\n\t<true/>\n</dict>\n");
}

TEST(PropertyListXmlWriter, EscapesThreeCharactersAndLeavesTheRestRaw) {
    EXPECT_EQ(xmlBody(u"a<b>&\"'\t\r\n\x01\u20AC\U0001F600"),
              "<string>a&lt;b&gt;&amp;\"'\t\r\n\x01\u20AC\U0001F600</string>\n");
}

TEST(PropertyListXmlWriter, WritesNumbersInTheirShortestForm) {
    EXPECT_EQ(xmlBody(std::numeric_limits<std::int64_t>::min()), "<integer>-9223372036854775808</integer>\n");
    EXPECT_EQ(xmlBody(std::numeric_limits<std::uint64_t>::max()), "<integer>18446744073709551615</integer>\n");
    EXPECT_EQ(xmlBody(0.1), "<real>0.1</real>\n");
    EXPECT_EQ(xmlBody(2.0), "<real>2</real>\n");
    EXPECT_EQ(xmlBody(-0.0), "<real>-0</real>\n");
    EXPECT_EQ(xmlBody(2.5F), "<real>2.5</real>\n");
    EXPECT_EQ(xmlBody(std::nan("")), "<real>nan</real>\n");
    EXPECT_EQ(xmlBody(HUGE_VAL), "<real>+infinity</real>\n");
    EXPECT_EQ(xmlBody(-HUGE_VAL), "<real>-infinity</real>\n");
}

TEST(PropertyListXmlWriter, CutsDatesToTheEarlierSecond) {
    EXPECT_EQ(xmlBody(NSDate::since1970(1520208000.0)), "<date>2018-03-05T00:00:00Z</date>\n");
    EXPECT_EQ(xmlBody(NSDate::since1970(1520208000.999)), "<date>2018-03-05T00:00:00Z</date>\n");
    EXPECT_EQ(xmlBody(NSDate::since1970(-0.5)), "<date>1969-12-31T23:59:59Z</date>\n");
    EXPECT_EQ(xmlBody(NSDate::since1970(-62135596800.0)), "<date>0001-01-01T00:00:00Z</date>\n");
    EXPECT_EQ(xmlBody(NSDate::since1970(253402300799.0)), "<date>9999-12-31T23:59:59Z</date>\n");
}

TEST(PropertyListXmlWriter, ShortensLinesOfDataWithTheirIndent) {
    const Data data(60, 0);
    EXPECT_EQ(xmlBody(data), "<data>\n" + std::string(76, 'A') + "\n" + std::string(4, 'A') + "\n</data>\n");
    EXPECT_EQ(xmlBody(Array{data}), "<array>\n\t<data>\n\t" + std::string(68, 'A') + "\n\t" + std::string(12, 'A') +
                                        "\n\t</data>\n</array>\n");
}

TEST(PropertyListXmlWriter, RefusesWhatUtf8CannotHold) {
    EXPECT_EQ(xml(std::u16string(u"a\0b", 3)), std::nullopt);
    EXPECT_EQ(xml(std::u16string(1, char16_t{0xD800})), std::nullopt);
    EXPECT_EQ(xml(Dictionary{{std::u16string(1, char16_t{0xDC00}), true}}), std::nullopt);
    EXPECT_EQ(xml(NSDate::sinceReferenceDate(std::nan(""))), std::nullopt);
    EXPECT_EQ(xml(NSDate::sinceReferenceDate(1e300)), std::nullopt);
}

TEST(PropertyListWriters, RefuseMoreThan512Levels) {
    EXPECT_TRUE(xml(nested(512)));
    EXPECT_TRUE(binary(nested(512)));
    std::optional<NSError> error;
    for (const auto format : {NSPropertyListFormat::xml_v1_0, NSPropertyListFormat::binary_v1_0}) {
        EXPECT_EQ(NSPropertyListSerialization::dataWithPropertyList(nested(513), format, &error), std::nullopt);
        EXPECT_EQ(error, NSError(NSCocoaErrorDomain, NSPropertyListWriteInvalidError));
    }
}

TEST(PropertyListWriters, RefuseTheFormThatIsOnlyRead) {
    EXPECT_EQ(NSPropertyListSerialization::dataWithPropertyList(Dictionary{}, NSPropertyListFormat::openStep),
              std::nullopt);
}

PropertyListValue everyKind() {
    return Dictionary{
        {u"array", Array{1, u"two", 3.0}},
        {u"text", u"caf\u00E9 \U0001F600 <&>\r\n\t"},
        {u"blank", u"  \n "},
        {u"", u"empty key"},
        {u"integers",
         Array{0, 255, 256, 65535, 65536, 4294967295, 4294967296, -1, std::numeric_limits<std::int64_t>::min(),
               std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::uint64_t>::max()}},
        {u"reals", Array{0.1, -0.0, 1e300, 5e-324, 1.0 / 3, HUGE_VAL, -HUGE_VAL}},
        {u"dates", Array{NSDate::since1970(0), NSDate::since1970(-62135596800.0), NSDate::since1970(253402300799.0),
                         NSDate::since1970(-2208988800.0)}},
        {u"data", Array{Data{}, Data{0}, Data{0, 255}, Data{1, 2, 3}, Data(1000, 77)}},
        {u"booleans", Array{true, false}},
        {u"long", std::u16string(100000, u'x')},
    };
}

TEST(PropertyList, EveryKindComesBackFromXml) {
    const std::optional<std::string> document = xml(everyKind());
    ASSERT_TRUE(document);
    NSPropertyListFormat format{};
    const Bytes bytes = bytesOf(*document);
    EXPECT_EQ(NSPropertyListSerialization::propertyListWithData(bytes, &format), everyKind());
    EXPECT_EQ(format, NSPropertyListFormat::xml_v1_0);
}

TEST(PropertyList, EveryKindComesBackFromBinary) {
    PropertyListValue list = everyKind();
    auto& entries = *list.as<Dictionary>();
    entries[u"fraction of a second"] = NSDate::sinceReferenceDate(-699999999.75);
    entries[u"zero unit"] = std::u16string(u"a\0b", 3);
    entries[u"lone surrogate"] = std::u16string(1, char16_t{0xD800});
    entries[u"float"] = 2.5F;
    entries[u"references"] = Array{PropertyListUid{0}, PropertyListUid{255}, PropertyListUid{std::uint64_t{1} << 40}};
    const std::optional<Bytes> bytes = binary(list);
    ASSERT_TRUE(bytes);
    NSPropertyListFormat format{};
    EXPECT_EQ(NSPropertyListSerialization::propertyListWithData(*bytes, &format), list);
    EXPECT_EQ(format, NSPropertyListFormat::binary_v1_0);
}

TEST(PropertyList, ManyRepeatedTextsComeBackFromBinary) {
    Array elements;
    for (int i = 0; i < 100000; ++i) elements.emplace_back(std::u16string(56, static_cast<char16_t>(u'a' + i % 3)));
    const std::optional<Bytes> bytes = binary(elements);
    ASSERT_TRUE(bytes);
    EXPECT_LT(bytes->size(), 150000U);
    EXPECT_EQ(NSPropertyListSerialization::propertyListWithData(*bytes), PropertyListValue(elements));
}

TEST(PropertyListBinary, ReadsAnArchiveOfThePlatform) {
    // The number 42 as the platform archives it.
    const Bytes bytes = {0x62, 0x70, 0x6c, 0x69, 0x73, 0x74, 0x30, 0x30, 0xd4, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x09,
                         0x0a, 0x58, 0x24, 0x76, 0x65, 0x72, 0x73, 0x69, 0x6f, 0x6e, 0x58, 0x24, 0x6f, 0x62, 0x6a, 0x65,
                         0x63, 0x74, 0x73, 0x59, 0x24, 0x61, 0x72, 0x63, 0x68, 0x69, 0x76, 0x65, 0x72, 0x54, 0x24, 0x74,
                         0x6f, 0x70, 0x12, 0x00, 0x01, 0x86, 0xa0, 0xa2, 0x07, 0x08, 0x55, 0x24, 0x6e, 0x75, 0x6c, 0x6c,
                         0x10, 0x2a, 0x5f, 0x10, 0x0f, 0x4e, 0x53, 0x4b, 0x65, 0x79, 0x65, 0x64, 0x41, 0x72, 0x63, 0x68,
                         0x69, 0x76, 0x65, 0x72, 0xd1, 0x0b, 0x0c, 0x54, 0x72, 0x6f, 0x6f, 0x74, 0x80, 0x01, 0x08, 0x11,
                         0x1a, 0x23, 0x2d, 0x32, 0x37, 0x3a, 0x40, 0x42, 0x54, 0x57, 0x5c, 0x00, 0x00, 0x00, 0x00, 0x00,
                         0x00, 0x01, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x0d, 0x00, 0x00, 0x00, 0x00, 0x00,
                         0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x5e};
    EXPECT_EQ(NSPropertyListSerialization::propertyListWithData(bytes),
              PropertyListValue(Dictionary{{u"$version", 100000},
                                           {u"$objects", Array{u"$null", 42}},
                                           {u"$archiver", u"NSKeyedArchiver"},
                                           {u"$top", Dictionary{{u"root", PropertyListUid{1}}}}}));
    for (std::size_t size = std::string_view("bplist").size(); size < bytes.size(); ++size) {
        const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(NSPropertyListSerialization::propertyListWithData(cut), std::nullopt);
    }
}

TEST(PropertyListBinary, RefusesAFileThatSharesItselfIntoABomb) {
    // Thirty arrays, each holding the next one 255 times.
    constexpr std::uint8_t kLevels = 30;
    Bytes bytes = bytesOf("bplist00");
    std::vector<std::size_t> offsets;
    for (std::uint8_t level = 0; level < kLevels; ++level) {
        offsets.push_back(bytes.size());
        bytes.insert(bytes.end(), {0xAF, 0x10, 0xFF});
        bytes.insert(bytes.end(), 255, static_cast<std::uint8_t>(level + 1));
    }
    offsets.push_back(bytes.size());
    bytes.push_back(0xA0);
    const std::size_t table = bytes.size();
    for (const std::size_t offset : offsets) {
        bytes.push_back(static_cast<std::uint8_t>(offset >> 8));
        bytes.push_back(static_cast<std::uint8_t>(offset));
    }
    Bytes trailer(32, 0);
    trailer[6] = 2;
    trailer[7] = 1;
    trailer[15] = kLevels + 1;
    trailer[30] = static_cast<std::uint8_t>(table >> 8);
    trailer[31] = static_cast<std::uint8_t>(table);
    bytes.insert(bytes.end(), trailer.begin(), trailer.end());
    EXPECT_EQ(NSPropertyListSerialization::propertyListWithData(bytes), std::nullopt);
}

TEST(PropertyListXmlReader, TakesADocumentWithoutItsFrame) {
    EXPECT_EQ(read("<dict><key>a</key><integer>1</integer></dict>"), PropertyListValue(Dictionary{{u"a", 1}}));
    EXPECT_EQ(read("<plist><string>x</string></plist>"), PropertyListValue(u"x"));
    EXPECT_EQ(read("  <!-- c --><?pi x?><string>x</string>\n<!-- d -->"), PropertyListValue(u"x"));
}

TEST(PropertyListXmlReader, JoinsTextsAroundCommentsAndCdata) {
    EXPECT_EQ(readElement("<string>a<!-- x -->b<![CDATA[<&amp;>]]>c&#x20AC;&#65;&lt;&gt;&amp;&quot;&apos;</string>"),
              PropertyListValue(u"ab<&amp;>c\u20ACA<>&\"'"));
}

TEST(PropertyListXmlReader, KeepsWhiteSpaceAndLineEndsOfTexts) {
    EXPECT_EQ(readElement("<string> \r\n\t </string>"), PropertyListValue(u" \r\n\t "));
}

// Comments and the like make the parser see white space otherwise.
TEST(PropertyListXmlReader, KeepsWhiteSpaceOfTextsWhateverStandsElsewhere) {
    for (const char* const elsewhere : {"", "<!-- x -->", "<?x y?>"}) {
        const std::string before = std::string(elsewhere) + "<array>\n\t";
        EXPECT_EQ(readElement(before + "<string> \n </string>\n<string> a </string>\n</array>"),
                  (PropertyListValue(Array{u" \n ", u" a "})))
            << elsewhere;
        EXPECT_EQ(readElement(before + "\n</array>\n" + elsewhere), PropertyListValue(Array{})) << elsewhere;
    }
    EXPECT_EQ(readElement("<string> <!-- x --> </string>"), PropertyListValue(u"  "));
    EXPECT_EQ(readElement("<string> <![CDATA[ ]]> <?x y?> </string>"), PropertyListValue(u"    "));
    EXPECT_EQ(readElement("<string>a<!-- x --> </string>"), PropertyListValue(u"a "));
    EXPECT_EQ(readElement("<dict> <!-- x --> <key> <!-- x --></key> <true> <!-- x --> </true> </dict>"),
              (PropertyListValue(Dictionary{{u" ", true}})));
}

TEST(PropertyListXmlReader, RefusesTextBetweenElements) {
    for (const char* const elsewhere : {"", "<!-- x -->"}) {
        for (const char* const element :
             {"<dict>x<key>k</key><true/></dict>", "<dict><key>k</key>x<true/></dict>",
              "<dict><key>k</key><true/>x</dict>", "<dict>x</dict>", "<array>x<true/></array>",
              "<array><true/>x</array>", "<array>&lt;</array>", "x<true/>", "<true/>x", "<true>x</true>",
              "<array><![CDATA[ ]]><true/></array>", "<dict><true/><key>k</key></dict>"}) {
            EXPECT_EQ(readElement(elsewhere + std::string(element)), std::nullopt) << elsewhere << element;
        }
    }
}

TEST(PropertyListXmlReader, RefusesATagThatTheLastByteCutsShort) {
    for (const char* const text : {"<array/>\n<", "<array/>\n<>", "<array/>\n</", "<array/>\n<a", "<array/"}) {
        EXPECT_EQ(read(text), std::nullopt) << text;
    }
}

TEST(PropertyListXmlReader, KeepsControlCharacters) {
    EXPECT_EQ(readElement("<string>a\x01&#1;b</string>"), PropertyListValue(u"a\x01\x01"
                                                                            u"b"));
}

TEST(PropertyListXmlReader, ReadsIntegersInTheirLenientForms) {
    EXPECT_EQ(readElement("<integer> \n+ 42</integer>"), PropertyListValue(42));
    EXPECT_EQ(readElement("<integer>-0x10</integer>"), PropertyListValue(-16));
    EXPECT_EQ(readElement("<integer>18446744073709551615</integer>"),
              PropertyListValue(std::numeric_limits<std::uint64_t>::max()));
    EXPECT_EQ(readElement("<integer>-9223372036854775808</integer>"),
              PropertyListValue(std::numeric_limits<std::int64_t>::min()));
    for (const char* text : {"", "abc", "1.5", "18446744073709551616", "-9223372036854775809", "0x", "1 2", "--1"}) {
        EXPECT_EQ(readElement("<integer>" + std::string(text) + "</integer>"), std::nullopt) << text;
    }
}

TEST(PropertyListXmlReader, ReadsRealsInTheirLenientForms) {
    EXPECT_EQ(readElement("<real> 1.5</real>"), PropertyListValue(1.5));
    EXPECT_EQ(readElement("<real>+1e3</real>"), PropertyListValue(1000.0));
    EXPECT_EQ(readElement("<real>INF</real>"), PropertyListValue(HUGE_VAL));
    EXPECT_EQ(readElement("<real>-Infinity</real>"), PropertyListValue(-HUGE_VAL));
    EXPECT_EQ(readElement("<real>1e999</real>"), PropertyListValue(HUGE_VAL));
    EXPECT_EQ(readElement("<real>1e-999</real>"), PropertyListValue(0.0));
    EXPECT_TRUE(std::isnan(readElement("<real>NaN</real>")->realValue().value()));
    for (const char* text : {"", "x", "1.5 ", "1,5", "+-1", "nan(1)"}) {
        EXPECT_EQ(readElement("<real>" + std::string(text) + "</real>"), std::nullopt) << text;
    }
}

TEST(PropertyListXmlReader, RollsDatesOver) {
    EXPECT_EQ(readElement("<date>2018-02-30T00:00:00Z</date>"), readElement("<date>2018-03-02T00:00:00Z</date>"));
    EXPECT_EQ(readElement("<date>2001-01-01T00:00:00Z</date>"), PropertyListValue(NSDate()));
    EXPECT_EQ(readElement("<date>0001-01-01T00:00:00Z</date>"), PropertyListValue(NSDate::since1970(-62135596800.0)));
    for (const char* text : {"", "garbage", "2018-03-05", "2018-03-05T00:00:00", "2018-03-05 00:00:00Z",
                             "18-03-05T00:00:00Z", "2018-3-05T00:00:00Z", " 2018-03-05T00:00:00Z"}) {
        EXPECT_EQ(readElement("<date>" + std::string(text) + "</date>"), std::nullopt) << text;
    }
}

TEST(PropertyListXmlReader, SkipsWhatIsNoBase64InData) {
    EXPECT_EQ(readElement("<data>\n\tAQ ID\n!</data>"), PropertyListValue(Data{1, 2, 3}));
    EXPECT_EQ(readElement("<data>AQ==</data>"), PropertyListValue(Data{1}));
    EXPECT_EQ(readElement("<data/>"), PropertyListValue(Data{}));
}

TEST(PropertyListXmlReader, ReadsDataOfAnyLengthWithAnyDirt) {
    for (std::size_t size = 0; size < 200; ++size) {
        Data data(size);
        for (std::size_t i = 0; i < size; ++i) data[i] = static_cast<std::uint8_t>(i * 7 + size);
        const std::string written = xml(data).value();
        EXPECT_EQ(read(written), PropertyListValue(data)) << size;
        std::string dirty;
        for (const char character : written.substr(kHead.size() + 6, written.size() - kHead.size() - 24)) {
            dirty.append({character, ' '}).append(size % 2 == 0 ? "\u00E9\u20AC" : "-_.");
        }
        EXPECT_EQ(readElement("<data>" + dirty + "</data>"), PropertyListValue(data)) << size;
    }
}

TEST(PropertyListXmlReader, RefusesWhatIsNoPropertyList) {
    for (const char* text : {"<plist></plist>",
                             "<plist><string>a</string><string>b</string></plist>",
                             "<html/>",
                             "<plist><x/></plist>",
                             "<dict><key>a</key></dict>",
                             "<dict><string>a</string></dict>",
                             "<dict><key>a</key><key>b</key></dict>",
                             "<dict>text</dict>",
                             "<array>text</array>",
                             "<string>a</string>junk",
                             "<string>a",
                             "<string>a</wrong>",
                             "<string>a<b/></string>",
                             "<true>x</true>",
                             "<string>&bogus;</string>",
                             "<string>&amp</string>",
                             "<string>&#0;</string>",
                             "<string>&#xD800;</string>",
                             "<string>&#x110000;</string>",
                             "<string>&#;</string>"}) {
        EXPECT_EQ(read(text), std::nullopt) << text;
    }
}

TEST(PropertyListXmlReader, LastOfTwoEqualKeysWins) {
    EXPECT_EQ(read("<dict><key>a</key><integer>1</integer><key>a</key><integer>2</integer></dict>"),
              PropertyListValue(Dictionary{{u"a", 2}}));
}

TEST(PropertyListXmlReader, NeverExpandsEntitiesOfItsOwn) {
    EXPECT_EQ(read("<!DOCTYPE plist [<!ENTITY a \"aaaa\"><!ENTITY b SYSTEM \"file:///etc/passwd\">]>"
                   "<plist><string>&a;</string></plist>"),
              std::nullopt);
    EXPECT_EQ(read("<!DOCTYPE plist [<!ENTITY b SYSTEM \"file:///etc/passwd\">]><plist><string>&b;</string></plist>"),
              std::nullopt);
}

TEST(PropertyListXmlReader, ReadsFiveHundredAndTwelveLevelsAndNoMore) {
    const auto document = [](int levels) {
        std::string text;
        for (int i = 0; i < levels; ++i) text += "<array>";
        for (int i = 0; i < levels; ++i) text += "</array>";
        return text;
    };
    EXPECT_EQ(read(document(512)), nested(512));
    EXPECT_EQ(read(document(513)), std::nullopt);
    EXPECT_EQ(read(document(1000000)), std::nullopt);
    EXPECT_EQ(read(std::string(1000000, '(')), std::nullopt);
    EXPECT_EQ(read(std::string(1000000, '{')), std::nullopt);
}

TEST(PropertyListXmlReader, HonoursByteOrderMarksAndDeclaredEncodings) {
    EXPECT_EQ(read("\xEF\xBB\xBF<string>\u00E9</string>"), PropertyListValue(u"\u00E9"));
    EXPECT_EQ(read("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><string>\xE9</string>"),
              PropertyListValue(u"\u00E9"));
    const std::u16string wide = u"<string>\u00E9\U0001F600</string>";
    std::string little = "\xFF\xFE";
    std::string big = "\xFE\xFF";
    for (const char16_t unit : wide) {
        little += {static_cast<char>(unit), static_cast<char>(unit >> 8)};
        big += {static_cast<char>(unit >> 8), static_cast<char>(unit)};
    }
    EXPECT_EQ(read(little), PropertyListValue(u"\u00E9\U0001F600"));
    EXPECT_EQ(read(big), PropertyListValue(u"\u00E9\U0001F600"));
}

TEST(PropertyListXmlReader, RefusesIllFormedText) {
    EXPECT_EQ(read("<string>\xE9</string>"), std::nullopt);
    EXPECT_EQ(read("<string>\xED\xA0\x80</string>"), std::nullopt);
    EXPECT_EQ(read(std::string_view("<string>a\0b</string>", 20)), std::nullopt);
    EXPECT_EQ(read("<?xml version=\"1.0\" encoding=\"no-such\"?><string>a</string>"), std::nullopt);
}

TEST(PropertyListOldStyle, ReadsDictionariesArraysDataAndWords) {
    EXPECT_EQ(
        read("{ a = b; \"c d\" = ( 1, x.y-z/$_:, ); e = <0f 2A>; }"),
        PropertyListValue(Dictionary{{u"a", u"b"}, {u"c d", Array{u"1", u"x.y-z/$_:"}}, {u"e", Data{0x0F, 0x2A}}}));
    EXPECT_EQ(read("()"), PropertyListValue(Array{}));
    EXPECT_EQ(read("{}"), PropertyListValue(Dictionary{}));
}

TEST(PropertyListOldStyle, ReadsQuotedTextsWithEscapes) {
    EXPECT_EQ(read("\"a\\n\\t\\\"\\\\\\101\\U00e9\" "), PropertyListValue(u"a\n\t\"\\A\u00E9"));
    EXPECT_EQ(read("'it \"is\"'"), PropertyListValue(u"it \"is\""));
}

TEST(PropertyListOldStyle, ReadsTheLinesOfAStringsFile) {
    EXPECT_EQ(read("/* greeting */ \"hello\" = \"hallo\"; // end\nsame;"),
              PropertyListValue(Dictionary{{u"hello", u"hallo"}, {u"same", u"same"}}));
}

TEST(PropertyListOldStyle, WhiteSpaceIsAnEmptyDictionaryAndOneWordIsAText) {
    EXPECT_EQ(read(" \n\t"), PropertyListValue(Dictionary{}));
    EXPECT_EQ(read("word"), PropertyListValue(u"word"));
}

TEST(PropertyListOldStyle, RefusesWhatIsCutShortOrFollowedByJunk) {
    for (const char* text : {"{ a = b }", "{ a = b;", "{ a = ; }", "( a b )", "( a", "<0f 2>", "<0", "<xy>", "\"open",
                             "{} junk", "a b", "a = b", "{ = b; }", "\"a\\"}) {
        EXPECT_EQ(read(text), std::nullopt) << text;
    }
}

TEST(PropertyListReading, ZeroBytesAreNoListAndSayWhy) {
    std::optional<NSError> error;
    const Bytes none;
    EXPECT_EQ(NSPropertyListSerialization::propertyListWithData(none, nullptr, &error), std::nullopt);
    EXPECT_EQ(error, NSError(NSCocoaErrorDomain, NSPropertyListReadCorruptError));
}

TEST(PropertyListReading, AbsentDataIsExceptional) {
    try {
        (void)NSPropertyListSerialization::propertyListWithData(std::nullopt);
        FAIL() << "no exception";
    } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), u"NSInvalidArgumentException");
    }
}

TEST(PropertyListReading, ClearsTheErrorOfAnEarlierCall) {
    std::optional<NSError> error(NSError(u"old", 1));
    const Bytes bytes = bytesOf("word");
    EXPECT_TRUE(NSPropertyListSerialization::propertyListWithData(bytes, nullptr, &error));
    EXPECT_EQ(error, std::nullopt);
}

}  // namespace
}  // namespace ZORPlatform
