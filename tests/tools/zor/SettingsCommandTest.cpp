// SPDX-License-Identifier: Apache-2.0
//
// settings as programs and people use it.

#include "ZorProcess.h"

#include <ZORFoundation/PlistCore/ZORPlistController.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSPropertyListSerialization.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>
#include <support/TemporaryDirectory.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

#include <filesystem>
#include <limits>
#include <string>

namespace zor::testing {
namespace {

namespace fs = std::filesystem;
using support::bytesOf;
using support::readFile;
using support::TemporaryDirectory;
using ZORPlatform::PropertyListValue;
using Array = PropertyListValue::Array;
using Dictionary = PropertyListValue::Dictionary;

constexpr std::u16string_view kKey = u"correct horse battery staple";
// Longer than 32 units, so that the current and the legacy key differ.
constexpr const char* kLongKey = "a key of more than thirty-two units, which differ";

/// The application whose file the command reads and changes.
class AppSettings : public ZORFoundation::ZORPlistController {
public:
    explicit AppSettings(fs::path directory) : directory_(std::move(directory)) {}
    [[nodiscard]] fs::path sandboxDir() const override { return directory_; }
    [[nodiscard]] fs::path plistFilename() const override { return "App.plist"; }

private:
    fs::path directory_;
};

class SettingsCommand : public ::testing::Test {
protected:
    [[nodiscard]] std::string file() const { return (directory_ / "App.plist").string(); }
    [[nodiscard]] std::string keyFile(std::string_view content = "correct horse battery staple\n",
                                      const std::string& name = "key") const {
        return directory_.write(name, content).string();
    }
    [[nodiscard]] std::string key() const { return "--key-file=" + keyFile(); }

    void save(Dictionary dictionary, std::optional<std::u16string_view> key = std::nullopt) const {
        AppSettings settings(directory_.path());
        settings.dictionary = std::move(dictionary);
        settings.isEncrypted = key.has_value();
        settings.encryptionKey = key.value_or(u"");
        ASSERT_TRUE(settings.persist());
    }
    [[nodiscard]] Dictionary load(std::optional<std::u16string_view> key = std::nullopt) const {
        AppSettings settings(directory_.path());
        settings.initWithEncryption(key.has_value(), key.value_or(u""));
        return settings.dictionary.value();
    }
    [[nodiscard]] RunResult run(Words words, std::string_view input = {}) const {
        words.insert(words.begin(), "settings");
        return runZor(std::move(words), input);
    }

    TemporaryDirectory directory_;
};

Dictionary sample() {
    return {{u"language", u"nl"},
            {u"tries", 3},
            {u"accounts", Array{Dictionary{{u"name", u"Compte à vue"}}, Dictionary{}}}};
}

TEST_F(SettingsCommand, ShowsAPlainFileAsItIs) {
    save(sample());
    const RunResult shown = run({"show", file()});
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_EQ(bytesOf(shown.out), readFile(file()));
    EXPECT_EQ(shown.err, "");
}

TEST_F(SettingsCommand, ShowsAnEncryptedFile) {
    save(sample(), kKey);
    EXPECT_NE(readFile(file())[0], '<');
    const RunResult shown = run({"show", file(), key()});
    save(sample());
    EXPECT_EQ(bytesOf(shown.out), readFile(file()));
}

TEST_F(SettingsCommand, ShowsWhatEarlierReleasesEncryptedOnRequest) {
    // The current key of the first 32 units would have its first byte zeroed; the legacy one is taken as far as it
    // fits.
    const std::string fitting = std::string(kLongKey).substr(0, 32);
    save(sample(), ZORPlatform::utf16(fitting));
    const std::string option = "--key-file=" + keyFile(kLongKey);
    EXPECT_EQ(run({"show", file(), option}).exitCode, 1);
    EXPECT_EQ(run({"get", file(), "language", option, "--legacy"}).out, "nl\n");
    EXPECT_EQ(run({"convert", file(), option, "--legacy"}).exitCode, 0);
    EXPECT_EQ(run({"get", file(), "language", option}).out, "nl\n");
    EXPECT_EQ(load(ZORPlatform::utf16(kLongKey)), sample());
}

TEST_F(SettingsCommand, ShowsBinaryAndOldStyleFiles) {
    const auto binary = ZORPlatform::NSPropertyListSerialization::dataWithPropertyList(
        sample(), ZORPlatform::NSPropertyListFormat::binary_v1_0);
    support::writeFile(file(), binary.value());
    EXPECT_EQ(run({"get", file(), "tries"}).out, "3\n");
    directory_.write("App.plist", "{ language = fr; }");
    EXPECT_EQ(run({"get", file(), "language"}).out, "fr\n");
}

TEST_F(SettingsCommand, PrintsJsonWithStringsForWhatJsonLacks) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    save({{u"array", Array{}},
          {u"big", std::numeric_limits<std::uint64_t>::max()},
          {u"data", PropertyListValue::Data{1, 2, 3}},
          {u"date", ZORPlatform::NSDate::since1970(1520208000)},
          {u"dict", Dictionary{}},
          {u"flag", true},
          {u"infinite", -kInfinity},
          {u"least", std::numeric_limits<std::int64_t>::min()},
          {u"list", Array{1, u"two"}},
          {u"real", 0.1},
          {u"text", u"\"\\\n\u0001\u00E9\U0001F600"}});
    const RunResult shown = run({"show", file(), "--json"});
    EXPECT_EQ(shown.out,
              "{\n"
              "  \"array\": [],\n"
              "  \"big\": 18446744073709551615,\n"
              "  \"data\": \"AQID\",\n"
              "  \"date\": \"2018-03-05T00:00:00Z\",\n"
              "  \"dict\": {},\n"
              "  \"flag\": true,\n"
              "  \"infinite\": \"-infinity\",\n"
              "  \"least\": -9223372036854775808,\n"
              "  \"list\": [\n"
              "    1,\n"
              "    \"two\"\n"
              "  ],\n"
              "  \"real\": 0.1,\n"
              "  \"text\": \"\\\"\\\\\\u000a\\u0001\u00E9\U0001F600\"\n"
              "}\n");
    EXPECT_EQ(nlohmann::json::parse(shown.out)["text"], "\"\\\n\u0001\u00E9\U0001F600");
}

TEST_F(SettingsCommand, PrintsInJsonWhatXmlCannotHold) {
    const auto binary = ZORPlatform::NSPropertyListSerialization::dataWithPropertyList(
        Dictionary{{u"zero", std::u16string(1, u'\0')}, {u"lone", std::u16string(1, u'\xD800')}},
        ZORPlatform::NSPropertyListFormat::binary_v1_0);
    support::writeFile(file(), binary.value());
    EXPECT_EQ(run({"show", file()}).exitCode, 1);
    EXPECT_EQ(run({"show", file(), "--json"}).out, "{\n  \"lone\": \"\\ud800\",\n  \"zero\": \"\\u0000\"\n}\n");
    EXPECT_EQ(run({"set", file(), "x"}, "y").exitCode, 1);
    EXPECT_EQ(readFile(file()), binary.value());
}

TEST_F(SettingsCommand, GetsOneValueByItsKeys) {
    save(sample());
    EXPECT_EQ(run({"get", file(), "language"}).out, "nl\n");
    EXPECT_EQ(run({"get", file(), "tries"}).out, "3\n");
    EXPECT_EQ(run({"get", file(), "accounts", "0", "name"}).out, "Compte à vue\n");
    EXPECT_EQ(run({"get", file(), "accounts", "0", "name", "--json"}).out, "\"Compte à vue\"\n");
    EXPECT_EQ(run({"get", file(), "accounts", "1", "--json"}).out, "{}\n");
    EXPECT_NE(run({"get", file(), "accounts"}).out.find("<array>"), std::string::npos);
    for (const Words& path : {Words{"missing"}, Words{"language", "x"}, Words{"accounts", "2"}, Words{"accounts", "x"},
                              Words{"accounts", "-1"}}) {
        Words words{"get", file(), "--"};
        words.insert(words.end(), path.begin(), path.end());
        const RunResult result = run(words);
        EXPECT_EQ(result.exitCode, 1) << path.back();
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "zor: there is no value of that KEY\n");
    }
}

TEST_F(SettingsCommand, SetsAValueFromStandardInput) {
    save(sample());
    EXPECT_EQ(run({"set", file(), "language"}, "fr\n").exitCode, 0);
    EXPECT_EQ(run({"set", file(), "new"}, "a & b\r\n").exitCode, 0);
    EXPECT_EQ(run({"set", file(), "accounts", "1", "name"}, "two\n\n").exitCode, 0);
    EXPECT_EQ(run({"set", file(), "accounts", "2"}, "three").exitCode, 0);
    EXPECT_EQ(load(), (Dictionary{{u"language", u"fr"},
                                  {u"new", u"a & b"},
                                  {u"tries", 3},
                                  {u"accounts", Array{Dictionary{{u"name", u"Compte à vue"}},
                                                      Dictionary{{u"name", u"two\n"}}, u"three"}}}));
}

TEST_F(SettingsCommand, SetsValuesOfEveryType) {
    save({});
    const auto set = [&](const std::string& type, std::string_view input) {
        return run({"set", file(), type, "--type=" + type}, input).exitCode;
    };
    EXPECT_EQ(set("string", "3"), 0);
    EXPECT_EQ(set("integer", "18446744073709551615\n"), 0);
    EXPECT_EQ(set("real", "-0.5\n"), 0);
    EXPECT_EQ(set("boolean", "true\n"), 0);
    EXPECT_EQ(set("date", "2018-03-05T00:00:00Z\n"), 0);
    EXPECT_EQ(set("data", std::string_view("\0\n", 2)), 0);
    EXPECT_EQ(set("xml", "<array><true/></array>"), 0);
    EXPECT_EQ(load(), (Dictionary{{u"string", u"3"},
                                  {u"integer", std::numeric_limits<std::uint64_t>::max()},
                                  {u"real", -0.5},
                                  {u"boolean", true},
                                  {u"date", ZORPlatform::NSDate::since1970(1520208000)},
                                  {u"data", PropertyListValue::Data{0, '\n'}},
                                  {u"xml", Array{true}}}));
    const auto before = readFile(file());
    EXPECT_EQ(set("string", "\xFF"), 1);
    EXPECT_EQ(set("integer", "x"), 1);
    EXPECT_EQ(set("integer", "1</integer><integer>2"), 1);
    EXPECT_EQ(set("real", ""), 1);
    EXPECT_EQ(set("boolean", "yes"), 1);
    EXPECT_EQ(set("date", "today"), 1);
    EXPECT_EQ(set("xml", "<array>"), 1);
    EXPECT_EQ(set("other", ""), 2);
    EXPECT_EQ(readFile(file()), before);
}

TEST_F(SettingsCommand, SetsInAnEncryptedFileAndKeepsItsMode) {
    save(sample(), kKey);
    ASSERT_EQ(::chmod(file().c_str(), 0600), 0);
    EXPECT_EQ(run({"set", file(), "language", key()}, "de").exitCode, 0);
    EXPECT_EQ(load(kKey).at(u"language"), PropertyListValue(u"de"));
    struct stat status {};
    ASSERT_EQ(::stat(file().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST_F(SettingsCommand, ConvertsBetweenKeysAndPlain) {
    save(sample());
    EXPECT_EQ(run({"convert", file(), "--new-key-file=" + keyFile()}).exitCode, 0);
    EXPECT_EQ(load(kKey), sample());
    EXPECT_EQ(run({"convert", file(), key(), "--new-key-file=" + keyFile("other", "other")}).exitCode, 0);
    EXPECT_EQ(load(u"other"), sample());
    EXPECT_EQ(run({"convert", file(), "--key-file=" + keyFile("other", "other"), "--plain"}).exitCode, 0);
    EXPECT_EQ(load(), sample());
    directory_.write("App.plist", "{ language = fr; }");
    EXPECT_EQ(run({"convert", file()}).exitCode, 0);
    EXPECT_EQ(readFile(file())[0], '<');
}

TEST_F(SettingsCommand, LeavesAFileAloneThatItCannotRead) {
    for (const char* const content : {"damaged {", ""}) {
        directory_.write("App.plist", content);
        for (const char* const action : {"show", "convert"}) {
            EXPECT_EQ(run({action, file()}).exitCode, 1) << content;
            EXPECT_EQ(run({action, file(), key()}).exitCode, 1) << content;
        }
        EXPECT_EQ(run({"set", file(), "x"}, "y").exitCode, 1);
        EXPECT_EQ(readFile(file()), bytesOf(content));
    }
    save(sample(), kKey);
    const auto before = readFile(file());
    const RunResult wrong = run({"set", file(), "x", "--key-file=" + keyFile("wrong")}, "y");
    EXPECT_EQ(wrong.exitCode, 1);
    EXPECT_EQ(wrong.err, "zor: the key is wrong, or the file holds no property list\n");
    EXPECT_EQ(run({"show", file()}).err, "zor: the file holds no property list; an encrypted one needs --key-file\n");
    EXPECT_EQ(readFile(file()), before);
}

TEST_F(SettingsCommand, LeavesAListAloneThatIsNoDictionary) {
    directory_.write("App.plist", "<plist><array><true/></array></plist>");
    EXPECT_EQ(run({"get", file(), "0"}).out, "true\n");
    EXPECT_EQ(run({"set", file(), "0"}, "x").exitCode, 1);
    EXPECT_EQ(run({"convert", file()}).exitCode, 1);
    EXPECT_EQ(readFile(file()), bytesOf("<plist><array><true/></array></plist>"));
}

TEST_F(SettingsCommand, FailsWhereThereIsNoFile) {
    const RunResult missing = run({"show", file()});
    EXPECT_EQ(missing.exitCode, 3);
    EXPECT_EQ(missing.err, "zor: " + file() + ": No such file or directory\n");
    EXPECT_EQ(run({"set", file(), "x"}, "y").exitCode, 3);
    EXPECT_FALSE(fs::exists(file()));
    EXPECT_EQ(run({"show", directory_.path().string()}).exitCode, 3);
    save(sample());
    EXPECT_EQ(run({"show", file(), "--key-file=/nonexistent"}).exitCode, 3);
}

TEST_F(SettingsCommand, TakesAPathWithoutAFolder) {
    save(sample());
    ZorProcess::Setting setting;
    setting.directory = directory_.path().string();
    EXPECT_EQ(runZor({"settings", "get", "App.plist", "tries"}, "", setting).out, "3\n");
    EXPECT_EQ(runZor({"settings", "set", "App.plist", "tries", "--type=integer"}, "4", setting).exitCode, 0);
    EXPECT_EQ(load().at(u"tries"), PropertyListValue(4));
}

TEST_F(SettingsCommand, RefusesCommandLinesThatMeanNothing) {
    save(sample());
    for (const Words& words :
         {Words{}, Words{"show"}, Words{"change", file()}, Words{"show", file(), "language"}, Words{"get", file()},
          Words{"set", file()}, Words{"convert", file(), "x"}, Words{"get", file(), "\xFF"},
          Words{"show", file(), "--legacy"}, Words{"show", file(), "--key-file-exact"},
          Words{"convert", file(), "--json"}, Words{"show", file(), "--plain"},
          Words{"get", file(), "language", "--type=string"},
          Words{"convert", file(), "--plain", "--new-key-file=" + keyFile()}, Words{"show", file(), "--key=secret"}}) {
        EXPECT_EQ(run(words).exitCode, 2) << (words.empty() ? "" : words.back());
    }
}

}  // namespace
}  // namespace zor::testing
