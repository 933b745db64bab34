// SPDX-License-Identifier: Apache-2.0
//
// The keychain command as programs and people use it.

#include "ZorProcess.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <support/TemporaryDirectory.h>

#include <filesystem>
#include <iterator>
#include <string>

namespace zor::testing {
namespace {

namespace fs = std::filesystem;

class KeychainCommand : public ::testing::Test {
protected:
    RunResult keychain(Words words, std::string_view input = {}) {
        words.insert(words.begin(), "keychain");
        words.push_back("--store=" + store().string());
        return runZor(std::move(words), input);
    }
    [[nodiscard]] fs::path store() const { return directory_ / "private" / "items.sqlite"; }
    [[nodiscard]] const fs::path& directory() const { return directory_.path(); }

private:
    support::TemporaryDirectory directory_;
};

bool hasLine(const std::string& text, const std::string& line) {
    return ("\n" + text).find("\n" + line + "\n") != std::string::npos;
}

TEST_F(KeychainCommand, AValueFromStandardInputComesBack) {
    const RunResult set = keychain({"set", "pin"}, "1234\n");
    EXPECT_EQ(set.exitCode, 0);
    EXPECT_EQ(set.out, "");
    EXPECT_EQ(set.err, "");
    const RunResult get = keychain({"get", "pin"});
    EXPECT_EQ(get.exitCode, 0);
    EXPECT_EQ(get.out, "1234\n");
    EXPECT_EQ(get.err, "");
    EXPECT_EQ(keychain({"set", "pin"}, "5678").exitCode, 0);
    EXPECT_EQ(keychain({"get", "pin"}).out, "5678\n");
}

TEST_F(KeychainCommand, DataComesBackByteForByte) {
    const std::string bytes("\x00\xFF\r\n\n", 5);
    EXPECT_EQ(keychain({"set", "key", "--type=data"}, bytes).exitCode, 0);
    EXPECT_EQ(keychain({"get", "key", "--type=data"}).out, bytes);
    const RunResult asText = keychain({"get", "key"});
    EXPECT_EQ(asText.exitCode, 1);
    EXPECT_EQ(asText.out, "");
}

TEST_F(KeychainCommand, OneLineEndIsNoPartOfAText) {
    EXPECT_EQ(keychain({"set", "key"}, "caf\xC3\xA9\r\n").exitCode, 0);
    EXPECT_EQ(keychain({"get", "key", "--type=data"}).out, "caf\xC3\xA9");
    EXPECT_EQ(keychain({"set", "key"}, "\n\n").exitCode, 0);
    EXPECT_EQ(keychain({"get", "key", "--type=data"}).out, "\n");
    EXPECT_EQ(keychain({"set", "key"}, "\xFF").exitCode, 1);
}

TEST_F(KeychainCommand, NumbersAreThoseOfTheLibrary) {
    EXPECT_EQ(keychain({"set", "integer", "--type=integer"}, "-42\n").exitCode, 0);
    EXPECT_EQ(keychain({"get", "integer", "--type=integer"}).out, "-42\n");
    EXPECT_EQ(keychain({"get", "integer", "--type=double"}).out, "-42\n");
    EXPECT_EQ(keychain({"get", "integer", "--type=boolean"}).out, "true\n");
    EXPECT_EQ(keychain({"get", "integer", "--type=data"}).out.substr(0, 8), "bplist00");
    EXPECT_EQ(keychain({"set", "double", "--type=double"}, "0.1").exitCode, 0);
    EXPECT_EQ(keychain({"get", "double", "--type=double"}).out, "0.1\n");
    EXPECT_EQ(keychain({"set", "flag", "--type=boolean"}, "false").exitCode, 0);
    EXPECT_EQ(keychain({"get", "flag", "--type=boolean"}).out, "false\n");
    for (const Words& wrong : {Words{"--type=integer", "1.5"}, Words{"--type=integer", "9223372036854775808"},
                               Words{"--type=double", "x"}, Words{"--type=boolean", "yes"}}) {
        EXPECT_EQ(keychain({"set", "wrong", wrong[0]}, wrong[1]).exitCode, 1) << wrong[1];
        EXPECT_EQ(keychain({"get", "wrong"}).exitCode, 1);
    }
}

TEST_F(KeychainCommand, AMissingKeyIsExitStatusOne) {
    for (const char* verb : {"get", "remove"}) {
        const RunResult result = keychain({verb, "missing"});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err.find("missing"), std::string::npos) << "a key is data, too";
    }
}

TEST_F(KeychainCommand, AskingMakesNoStore) {
    for (const Words& words : {Words{"get", "pin"}, Words{"remove", "pin"}, Words{"list"}}) {
        EXPECT_EQ(keychain(words).exitCode, 1);
    }
    EXPECT_FALSE(fs::exists(store().parent_path()));
}

TEST_F(KeychainCommand, ARemovedKeyIsGone) {
    EXPECT_EQ(keychain({"set", "pin"}, "1234").exitCode, 0);
    EXPECT_EQ(keychain({"remove", "pin"}).exitCode, 0);
    EXPECT_EQ(keychain({"get", "pin"}).exitCode, 1);
}

TEST_F(KeychainCommand, ServicesAndGroupsAreApart) {
    EXPECT_EQ(keychain({"set", "pin", "--service=bank"}, "1").exitCode, 0);
    EXPECT_EQ(keychain({"get", "pin"}).exitCode, 1);
    EXPECT_EQ(keychain({"get", "pin", "--service=bank", "--access-group=g"}).exitCode, 1);
    EXPECT_EQ(keychain({"set", "pin", "--service=bank", "--access-group=g"}, "2").exitCode, 0);
    EXPECT_EQ(keychain({"get", "pin", "--service=bank", "--access-group=g"}).out, "2\n");
}

TEST_F(KeychainCommand, AnAccessibilityIsKeptAndAskedFor) {
    EXPECT_EQ(keychain({"set", "pin", "--accessible=always"}, "1").exitCode, 0);
    EXPECT_EQ(keychain({"get", "pin", "--accessible=whenUnlocked"}).exitCode, 1);
    EXPECT_EQ(keychain({"set", "pin", "--accessible=whenUnlocked"}, "2").exitCode, 1);
    EXPECT_EQ(keychain({"get", "pin", "--accessible=always"}).out, "1\n");
    EXPECT_EQ(keychain({"get", "pin", "--accessible=never"}).exitCode, 2);
}

TEST_F(KeychainCommand, ListNamesKeysAndNoValues) {
    EXPECT_EQ(keychain({"set", "a\tb\\c", "--service=bank"}, "secret").exitCode, 0);
    EXPECT_EQ(keychain({"set", "pin", "--accessible=always"}, "secret").exitCode, 0);
    EXPECT_EQ(keychain({"list"}).out, "bank\ta\\tb\\\\c\twhenUnlocked\nZorKeychainWrapper\tpin\talways\n");
    EXPECT_EQ(keychain({"list", "--service=bank"}).out, "bank\ta\\tb\\\\c\twhenUnlocked\n");
    EXPECT_EQ(keychain({"list", "--accessible=always"}).out, "ZorKeychainWrapper\tpin\talways\n");
}

TEST_F(KeychainCommand, DoctorMakesNothing) {
    const RunResult result = keychain({"doctor"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(hasLine(result.out, "store: " + store().string() + ", not made yet"));
    EXPECT_FALSE(fs::exists(store().parent_path()));
}

TEST_F(KeychainCommand, DoctorNamesFilesModesKeyAndSchema) {
    EXPECT_EQ(keychain({"set", "pin"}, "1234").exitCode, 0);
    const RunResult result = keychain({"doctor"});
    EXPECT_EQ(result.exitCode, 0);
    const std::string key = (store().parent_path() / "items.key").string();
    for (const std::string& line :
         {"directory: " + store().parent_path().string() + ", mode 0700", "store: " + store().string() + ", mode 0600",
          "key: key file " + key, "key file: " + key + ", mode 0600", std::string("schema: version 2"),
          std::string("items: 1")}) {
        EXPECT_TRUE(hasLine(result.out, line)) << line << " in\n" << result.out;
    }
    EXPECT_EQ(result.out.find("problem"), std::string::npos);
}

TEST_F(KeychainCommand, DoctorFindsWhatIsOpenToOthers) {
    EXPECT_EQ(keychain({"set", "pin"}, "1234").exitCode, 0);
    fs::permissions(store(), fs::perms::others_read, fs::perm_options::add);
    const RunResult result = keychain({"doctor"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(hasLine(result.out, "problem: " + store().string() + " is open to others"));
}

TEST_F(KeychainCommand, DoctorNamesDamagedItemsAndRemoveTakesThem) {
    const std::string value(200, 'v');
    EXPECT_EQ(keychain({"set", "first"}, value).exitCode, 0);
    EXPECT_EQ(keychain({"set", "second"}, value).exitCode, 0);
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(store().c_str(), &connection), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(connection, "UPDATE entries SET value=zeroblob(length(value)) WHERE row=1", nullptr, nullptr,
                           nullptr),
              SQLITE_OK);
    sqlite3_close(connection);
    const RunResult result = keychain({"doctor"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(hasLine(result.out, "problem: damaged item genp-1")) << result.out;
    EXPECT_TRUE(hasLine(result.out, "items: 2"));
    EXPECT_EQ(keychain({"list"}).exitCode, 1);
    EXPECT_EQ(keychain({"get", "first"}).exitCode, 1);
    EXPECT_EQ(keychain({"get", "second"}).out, value + "\n");
    EXPECT_EQ(keychain({"remove", "--reference=genp-1"}).exitCode, 0);
    EXPECT_EQ(keychain({"remove", "--reference=genp-1"}).exitCode, 1);
    EXPECT_EQ(keychain({"doctor"}).exitCode, 0);
    for (const char* reference : {"--reference=", "--reference=genp", "--reference=genp-0", "--reference=17"}) {
        EXPECT_EQ(keychain({"remove", reference}).exitCode, 2) << reference;
    }
}

TEST_F(KeychainCommand, AKeyElsewhereIsUsed) {
    const std::string source = "--key-source=file:" + (directory() / "keys" / "key").string();
    EXPECT_EQ(keychain({"set", "pin", source}, "1234").exitCode, 0);
    EXPECT_TRUE(fs::exists(directory() / "keys" / "key"));
    EXPECT_EQ(keychain({"get", "pin", source}).out, "1234\n");
    EXPECT_FALSE(fs::exists(store().parent_path() / "items.key"));
    const RunResult withoutKey = keychain({"get", "pin"});
    EXPECT_EQ(withoutKey.exitCode, 3);
    EXPECT_NE(withoutKey.err.find("its key is missing"), std::string::npos);
    EXPECT_TRUE(hasLine(keychain({"doctor"}).out,
                        "problem: the store: its key is missing, or another process keeps it "
                        "locked"));
    for (const char* wrong : {"--key-source=file", "--key-source=file:", "--key-source=other:x", "--key-source="}) {
        EXPECT_EQ(keychain({"get", "pin", wrong}).exitCode, 2) << wrong;
    }
}

TEST_F(KeychainCommand, ACredentialOfSystemdIsUsed) {
    support::writeFile(directory() / "store-key", std::vector<std::uint8_t>(32, 7));
    ZorProcess::Setting setting;
    setting.environment = Words{"CREDENTIALS_DIRECTORY=" + directory().string()};
    const Words options{"--store=" + store().string(), "--key-source=credential:store-key"};
    EXPECT_EQ(runZor({"keychain", "set", "pin", options[0], options[1]}, "1234", setting).exitCode, 0);
    EXPECT_EQ(runZor({"keychain", "get", "pin", options[0], options[1]}, "", setting).out, "1234\n");
    EXPECT_EQ(keychain({"get", "pin", options[1]}).exitCode, 3) << "no credentials here";
}

TEST_F(KeychainCommand, AStoreThatCannotBeUsedIsExitStatusThree) {
    const RunResult result = runZor({"keychain", "set", "pin", "--store=/proc/nowhere/items.sqlite"}, "1");
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_NE(result.err.find("/proc/nowhere/items.sqlite: cannot be read or written"), std::string::npos);
    support::writeFile(directory() / "file", support::bytesOf("no database"));
    EXPECT_EQ(runZor({"keychain", "list", "--store=" + (directory() / "file").string()}).exitCode, 3);
}

TEST_F(KeychainCommand, TheDefaultStoreIsInTheDataDirectory) {
    ZorProcess::Setting setting;
    setting.environment = Words{"XDG_DATA_HOME=" + directory().string()};
    EXPECT_EQ(runZor({"keychain", "set", "pin"}, "1234", setting).exitCode, 0);
    EXPECT_TRUE(fs::exists(directory() / "ZORFoundation" / "items.sqlite"));
    EXPECT_EQ(runZor({"keychain", "get", "pin"}, "", setting).out, "1234\n");
}

TEST_F(KeychainCommand, ARelativeStoreIsTakenFromTheWorkingDirectory) {
    ZorProcess::Setting setting;
    setting.directory = directory().string();
    EXPECT_EQ(runZor({"keychain", "set", "pin", "--store=items.sqlite"}, "1234", setting).exitCode, 0);
    EXPECT_TRUE(fs::exists(directory() / "items.sqlite"));
}

TEST_F(KeychainCommand, AfterACommandTheStoreIsOneFileAndItsKey) {
    for (const Words& words : {Words{"set", "pin"}, Words{"get", "pin"}, Words{"get", "missing"}, Words{"list"},
                               Words{"doctor"}, Words{"remove", "pin"}}) {
        keychain(words, "1234");
        const fs::directory_iterator entries(store().parent_path());
        EXPECT_EQ(std::distance(begin(entries), end(entries)), 2) << words[0];
    }
}

TEST_F(KeychainCommand, AValueIsNeverAWordOfTheCommandLine) {
    EXPECT_EQ(keychain({"set", "pin", "1234"}).exitCode, 2);
    EXPECT_EQ(keychain({"set"}).exitCode, 2);
    EXPECT_EQ(keychain({}).exitCode, 2);
    EXPECT_EQ(keychain({"show"}).exitCode, 2);
    EXPECT_EQ(keychain({"list", "pin"}).exitCode, 2);
    EXPECT_EQ(keychain({"doctor", "pin"}).exitCode, 2);
    EXPECT_EQ(keychain({"get", "pin", "--type=other"}).exitCode, 2);
    EXPECT_EQ(keychain({"get", "pin", "--reference=genp-1"}).exitCode, 2);
    EXPECT_EQ(keychain({"get", "\xFF"}).exitCode, 2);
    EXPECT_FALSE(fs::exists(store()));
}

TEST_F(KeychainCommand, AValueHasALongestLength) {
    EXPECT_EQ(keychain({"set", "key", "--type=data"}, std::string(1 << 20, 'x')).exitCode, 0);
    EXPECT_EQ(keychain({"get", "key"}).out.size(), (std::size_t{1} << 20) + 1);
    EXPECT_EQ(keychain({"set", "key", "--type=data"}, std::string((1 << 20) + 1, 'x')).exitCode, 1);
}

}  // namespace
}  // namespace zor::testing
