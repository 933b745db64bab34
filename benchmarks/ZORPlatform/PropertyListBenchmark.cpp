// SPDX-License-Identifier: Apache-2.0
//
// Property lists of 1 KB and 1 MB. The plain mapping beside the reader walks the same parser's document into the same
// values and checks nothing.
#include <benchmarks/Comparison.h>

#include <ZORPlatform/Foundation/NSPropertyListSerialization.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <plist/plist.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <pugixml.hpp>
#include <string>

namespace {

using benchmarks::Comparison;
using ZORPlatform::NSPropertyListFormat;
using ZORPlatform::NSPropertyListSerialization;
using ZORPlatform::PropertyListValue;
using Bytes = std::vector<std::uint8_t>;

PropertyListValue settings(int accounts) {
    PropertyListValue::Array list;
    for (int i = 0; i < accounts; ++i) {
        const std::u16string number = ZORPlatform::utf16(std::to_string(100000000 + i));
        list.emplace_back(PropertyListValue::Dictionary{
            {u"accountNumber", u"BE68" + number},
            {u"balance", 1234.5 + i},
            {u"favourite", i % 3 == 0},
            {u"name", u"Compte \u00E0 vue " + number},
            {u"opened", ZORPlatform::NSDate::since1970(1520208000.0 + 86400.0 * i)},
            {u"order", i},
            {u"token", PropertyListValue::Data(24, static_cast<std::uint8_t>(i))},
        });
    }
    return PropertyListValue::Dictionary{{u"accounts", std::move(list)}, {u"language", u"nl"}};
}

PropertyListValue plainMapping(const pugi::xml_node& element) {
    const std::string_view name = element.name();
    const char* text = element.child_value();
    if (name == "dict") {
        PropertyListValue::Dictionary entries;
        for (pugi::xml_node key = element.first_child(); key; key = key.next_sibling().next_sibling()) {
            entries[ZORPlatform::utf16(key.child_value())] = plainMapping(key.next_sibling());
        }
        return entries;
    }
    if (name == "array") {
        PropertyListValue::Array elements;
        for (const pugi::xml_node& child : element) elements.push_back(plainMapping(child));
        return elements;
    }
    if (name == "string") return ZORPlatform::utf16(text);
    if (name == "integer") return std::strtoll(text, nullptr, 10);
    if (name == "real") return std::strtod(text, nullptr);
    if (name == "true" || name == "false") return name == "true";
    if (name == "date") {
        std::tm time{};
        strptime(text, "%Y-%m-%dT%H:%M:%SZ", &time);
        return ZORPlatform::NSDate::since1970(static_cast<double>(timegm(&time)));
    }
    return PropertyListValue::Data(std::strlen(text) / 4 * 3);
}

struct Document {
    Bytes xml;
    Bytes binary;
    PropertyListValue value;
    std::shared_ptr<void> tree;

    explicit Document(int accounts) : value(settings(accounts)) {
        xml = NSPropertyListSerialization::dataWithPropertyList(value, NSPropertyListFormat::xml_v1_0).value();
        binary = NSPropertyListSerialization::dataWithPropertyList(value, NSPropertyListFormat::binary_v1_0).value();
        plist_t parsed = nullptr;
        plist_from_xml(text(xml), static_cast<std::uint32_t>(xml.size()), &parsed);
        tree = std::shared_ptr<void>(parsed, plist_free);
    }
    static const char* text(const Bytes& bytes) { return reinterpret_cast<const char*>(bytes.data()); }
};

void readWithPeer(const Bytes& bytes, void (*parse)(const char*, std::uint32_t, plist_t*)) {
    plist_t tree = nullptr;
    parse(Document::text(bytes), static_cast<std::uint32_t>(bytes.size()), &tree);
    benchmark::DoNotOptimize(tree);
    plist_free(tree);
}

void writeWithPeer(void* tree, void (*write)(plist_t, char**, std::uint32_t*)) {
    char* out = nullptr;
    std::uint32_t size = 0;
    write(tree, &out, &size);
    benchmark::DoNotOptimize(out);
    std::free(out);
}

void add(const std::string& size, const std::shared_ptr<const Document>& document) {
    const auto read = [](const Bytes& bytes) {
        benchmark::DoNotOptimize(NSPropertyListSerialization::propertyListWithData(bytes));
    };
    const auto write = [](const Document& list, NSPropertyListFormat format) {
        benchmark::DoNotOptimize(NSPropertyListSerialization::dataWithPropertyList(list.value, format));
    };
    Comparison("XML to values, " + size)
        .candidate([=] { read(document->xml); })
        .floor("plain mapping",
               [=] {
                   pugi::xml_document parsed;
                   parsed.load_buffer(document->xml.data(), document->xml.size());
                   benchmark::DoNotOptimize(plainMapping(parsed.child("plist").first_child()));
               })
        .peer("libplist", [=] { readWithPeer(document->xml, plist_from_xml); })
        .atMost(1.3, "plain mapping")
        .add();
    Comparison("values to XML, " + size)
        .candidate([=] { write(*document, NSPropertyListFormat::xml_v1_0); })
        .floor("copy of the bytes", [=] { benchmark::DoNotOptimize(Bytes(document->xml)); })
        .peer("libplist", [=] { writeWithPeer(document->tree.get(), plist_to_xml); })
        .atMost(1.0 / 3, "libplist")
        .add();
    Comparison("binary to values, " + size)
        .candidate([=] { read(document->binary); })
        .peer("libplist", [=] { readWithPeer(document->binary, plist_from_bin); })
        .peer("libplist, other way", [=] { writeWithPeer(document->tree.get(), plist_to_bin); })
        .atMost(1.0, "libplist")
        .atMost(1.0, "libplist, other way")
        .add();
    Comparison("values to binary, " + size)
        .candidate([=] { write(*document, NSPropertyListFormat::binary_v1_0); })
        .floor("copy of the bytes", [=] { benchmark::DoNotOptimize(Bytes(document->binary)); })
        .peer("libplist", [=] { writeWithPeer(document->tree.get(), plist_to_bin); })
        .peer("libplist, other way", [=] { readWithPeer(document->binary, plist_from_bin); })
        .atMost(1.0, "libplist")
        .atMost(1.0, "libplist, other way")
        .add();
}

const bool kAdded = [] {
    add("1 KB", std::make_shared<const Document>(2));
    add("1 MB", std::make_shared<const Document>(2500));
    return true;
}();

}  // namespace
