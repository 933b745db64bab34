// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/PlistCore/ZORPlistController.h>

#include <ZORFoundation/ZORAESCrypt.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSException.h>

#include <gtest/gtest.h>

#include <support/TemporaryDirectory.h>

#include <string>

namespace ZORFoundation {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
using Dictionary = PropertyListValue::Dictionary;
using support::bytesOf;
using support::readFile;
using support::writeFile;
using ZORPlatform::HostEnvironment;

constexpr std::u16string_view kKey = u"correct horse battery staple";
// Longer than 32 units, so that the current and the legacy key differ.
constexpr std::u16string_view kLongKey = u"a key of more than thirty-two units, which differ";

class AppSettings : public ZORPlistController {
public:
    fs::path plistFilename() const override { return "App.plist"; }
};

class ZORPlistControllerTest : public testing::Test {
protected:
    ZORPlistControllerTest() {
        fs::create_directory(documents());
        fs::create_directory(resources());
        HostEnvironment::setDocumentsDirectory(documents());
        HostEnvironment::setMainResourceDirectory(resources());
        HostEnvironment::setStateDirectory(state());
    }
    ~ZORPlistControllerTest() override {
        HostEnvironment::setDocumentsDirectory(std::nullopt);
        HostEnvironment::setMainResourceDirectory(std::nullopt);
        HostEnvironment::setStateDirectory(std::nullopt);
    }

    [[nodiscard]] fs::path documents() const { return directory_ / "Documents"; }
    [[nodiscard]] fs::path resources() const { return directory_ / "Resources"; }
    [[nodiscard]] fs::path state() const { return directory_ / "state"; }
    [[nodiscard]] fs::path file() const { return documents() / "App.plist"; }

    void installDefaults(const std::string& element = "<dict><key>language</key><string>nl</string></dict>") const {
        writeFile(resources() / "App.plist", bytesOf("<plist version=\"1.0\">" + element + "</plist>"));
    }
    void writeSettings(const std::string& content) const { writeFile(file(), bytesOf(content)); }

    static const Dictionary& defaults() {
        static const Dictionary dictionary{{u"language", u"nl"}};
        return dictionary;
    }

private:
    support::TemporaryDirectory directory_;
};

std::size_t filesIn(const fs::path& directory) {
    std::error_code error;
    std::size_t count = 0;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error)) ++count;
    return count;
}

TEST_F(ZORPlistControllerTest, FirstRunInstallsTheDefaults) {
    installDefaults();
    const auto settings = ZORPlistController::withEncryption<AppSettings>(false, u"");
    EXPECT_EQ(settings->dictionary, defaults());
    EXPECT_EQ(
        readFile(file()),
        bytesOf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                "<plist version=\"1.0\">\n<dict>\n\t<key>language</key>\n\t<string>nl</string>\n</dict>\n</plist>\n"));
}

TEST_F(ZORPlistControllerTest, FirstRunEncryptsTheDefaults) {
    installDefaults();
    const auto settings = ZORPlistController::withEncryption<AppSettings>(true, kKey);
    EXPECT_EQ(settings->dictionary, defaults());
    const auto plaintext = ZORAESCrypt::zor_AES256DecryptWithKey(readFile(file()), kKey);
    ASSERT_TRUE(plaintext);
    EXPECT_EQ(std::string(plaintext->begin(), plaintext->begin() + 5), "<?xml");
}

TEST_F(ZORPlistControllerTest, WhatIsPersistedIsLoadedAgain) {
    installDefaults();
    for (const bool encrypted : {false, true}) {
        fs::remove(file());
        const auto settings = ZORPlistController::withEncryption<AppSettings>(encrypted, kKey);
        settings->dictionary->insert_or_assign(u"tries", 3);
        settings->dictionary->insert_or_assign(u"name", u"caf\u00E9 <&> \U0001F600");
        EXPECT_TRUE(settings->persist());
        const auto again = ZORPlistController::withEncryption<AppSettings>(encrypted, kKey);
        EXPECT_EQ(again->dictionary, settings->dictionary);
        EXPECT_EQ(again->isEncrypted, encrypted);
        EXPECT_EQ(again->encryptionKey, kKey);
    }
}

TEST_F(ZORPlistControllerTest, AFileThatOnlyTheLegacyDecryptionReadsIsLoadedAndKeptUntilPersist) {
    installDefaults();
    // A long key loses its first byte in the current preparation and keeps it in the legacy one, so the first 32 units
    // of it, as a key of their own, encrypt what the legacy decryption reads.
    const Bytes legacy = *ZORAESCrypt::zor_AES256EncryptWithKey(
        bytesOf("<plist><dict><key>from</key><string>earlier</string></dict></plist>"), kLongKey.substr(0, 32));
    ASSERT_NE(ZORAESCrypt::zor_legacyAES256DecryptWithKey(legacy, kLongKey), std::nullopt);
    writeFile(file(), legacy);

    class Reading : public AppSettings {
    public:
        // The current decryption gives data that is no list, as it does for one file in 256.
        std::optional<Bytes> getSettingsDataEncrypted(bool encrypted, bool useLegacyDecryption,
                                                      std::u16string_view key) override {
            if (encrypted && !useLegacyDecryption) return bytesOf("\x01\x02");
            return AppSettings::getSettingsDataEncrypted(encrypted, useLegacyDecryption, key);
        }
    };
    const auto settings = ZORPlistController::withEncryption<Reading>(true, kLongKey);
    EXPECT_EQ(settings->dictionary, (Dictionary{{u"from", u"earlier"}}));
    EXPECT_EQ(readFile(file()), legacy);
    EXPECT_TRUE(settings->persist());
    EXPECT_NE(ZORAESCrypt::zor_AES256DecryptWithKey(readFile(file()), kLongKey), std::nullopt);
    EXPECT_NE(readFile(file()), legacy);
}

TEST_F(ZORPlistControllerTest, ADecryptionThatGivesNothingReplacesTheFileByTheDefaults) {
    installDefaults();
    writeSettings("not a whole number of blocks");
    const auto settings = ZORPlistController::withEncryption<AppSettings>(true, kKey);
    EXPECT_EQ(settings->dictionary, defaults());
    EXPECT_NE(ZORAESCrypt::zor_AES256DecryptWithKey(readFile(file()), kKey), std::nullopt);
}

TEST_F(ZORPlistControllerTest, TheReplacedFileIsKeptAsideThreeTimes) {
    installDefaults();
    for (const char* content : {"first", "second", "third", "fourth"}) {
        writeSettings(content);
        EXPECT_TRUE(ZORPlistController::withEncryption<AppSettings>(true, kKey));
    }
    std::vector<Bytes> contents;
    std::vector<fs::path> copies(fs::directory_iterator(state()), {});
    std::sort(copies.begin(), copies.end());
    for (const fs::path& copy : copies) contents.push_back(readFile(copy));
    EXPECT_EQ(contents, (std::vector<Bytes>{bytesOf("second"), bytesOf("third"), bytesOf("fourth")}));
}

TEST_F(ZORPlistControllerTest, AFileOfAnotherKeyIsReplacedByTheDefaultsAndKeptAside) {
    installDefaults();
    const auto settings = ZORPlistController::withEncryption<AppSettings>(true, kKey);
    const Bytes before = readFile(file());
    EXPECT_EQ(ZORPlistController::withEncryption<AppSettings>(true, kLongKey)->dictionary, defaults());
    EXPECT_NE(ZORAESCrypt::zor_AES256DecryptWithKey(readFile(file()), kLongKey), std::nullopt);
    ASSERT_EQ(filesIn(state()), 1U);
    EXPECT_EQ(readFile(fs::directory_iterator(state())->path()), before);
}

TEST_F(ZORPlistControllerTest, APlainFileIsNoEncryptedOneAndIsReplaced) {
    installDefaults();
    writeSettings("<plist><dict/></plist>");
    EXPECT_EQ(ZORPlistController::withEncryption<AppSettings>(true, kKey)->dictionary, defaults());
}

TEST_F(ZORPlistControllerTest, AnEmptyFileIsAnEmptyDictionaryUnlessItIsEncrypted) {
    installDefaults();
    writeSettings("");
    EXPECT_EQ(ZORPlistController::withEncryption<AppSettings>(false, u"")->dictionary, Dictionary{});
    EXPECT_EQ(readFile(file()), Bytes{});
    EXPECT_EQ(ZORPlistController::withEncryption<AppSettings>(true, kKey)->dictionary, defaults());
}

TEST_F(ZORPlistControllerTest, WhatIsNoFileIsReplacedByTheDefaultsAndKeptAside) {
    installDefaults();
    fs::create_directories(file() / "folder");
    EXPECT_EQ(ZORPlistController::withEncryption<AppSettings>(false, u"")->dictionary, defaults());
    EXPECT_TRUE(fs::is_regular_file(file()));
    ASSERT_EQ(filesIn(state()), 1U);
    EXPECT_TRUE(fs::exists(fs::directory_iterator(state())->path() / "folder"));
}

TEST_F(ZORPlistControllerTest, RemovingTheFileOnRequestKeepsNoCopy) {
    installDefaults();
    const auto settings = ZORPlistController::withEncryption<AppSettings>(false, u"");
    settings->removeSettingsFile();
    EXPECT_FALSE(AppSettings().exists());
    EXPECT_EQ(filesIn(state()), 0U);
}

TEST_F(ZORPlistControllerTest, ARootThatIsNoDictionaryGivesAnEmptyOne) {
    for (const char* content :
         {"<plist><array><true/></array></plist>", "<plist><string>x</string></plist>", "word", "{broken"}) {
        writeSettings(content);
        const auto settings = ZORPlistController::withEncryption<AppSettings>(false, u"");
        EXPECT_EQ(settings->dictionary, Dictionary{}) << content;
        EXPECT_EQ(readFile(file()), bytesOf(content)) << "the file stays until persist";
    }
}

TEST_F(ZORPlistControllerTest, WithoutEncryptionTheLegacyFlagDoesNotMatter) {
    writeSettings("<plist><dict/></plist>");
    AppSettings settings;
    EXPECT_EQ(settings.getSettingsDataEncrypted(false, true, kKey), bytesOf("<plist><dict/></plist>"));
    EXPECT_EQ(settings.getSettingsDataEncrypted(false, false, kKey), bytesOf("<plist><dict/></plist>"));
}

TEST_F(ZORPlistControllerTest, WithoutADefaultFileLoadingThrows) {
    try {
        static_cast<void>(ZORPlistController::withEncryption<AppSettings>(false, u""));
        FAIL() << "no exception";
    } catch (const ZORPlatform::NSException& exception) {
        EXPECT_EQ(exception.name(), u"NSInvalidArgumentException");
    }
    EXPECT_FALSE(AppSettings().exists());
}

TEST_F(ZORPlistControllerTest, DefaultsThatAreNoDictionaryAreNone) {
    installDefaults("<array/>");
    AppSettings settings;
    settings.dictionary = Dictionary{{u"before", true}};
    settings.installNewSettingsFile();
    EXPECT_EQ(settings.dictionary, std::nullopt);
    EXPECT_FALSE(settings.exists());
}

TEST_F(ZORPlistControllerTest, DefaultsMayHaveAnyFormOfAPropertyList) {
    writeFile(resources() / "App.plist", bytesOf("{ language = nl; }"));
    EXPECT_EQ(ZORPlistController::withEncryption<AppSettings>(false, u"")->dictionary, defaults());
    EXPECT_EQ(readFile(file())[0], '<');
}

TEST_F(ZORPlistControllerTest, PersistEncryptsUnderTheKeyAndTheFlagOfTheMoment) {
    installDefaults();
    const auto settings = ZORPlistController::withEncryption<AppSettings>(false, u"");
    settings->isEncrypted = true;
    settings->encryptionKey = kKey;
    EXPECT_TRUE(settings->persist());
    EXPECT_EQ(ZORPlistController::withEncryption<AppSettings>(true, kKey)->dictionary, defaults());
    settings->encryptionKey = kLongKey;
    EXPECT_TRUE(settings->persist());
    EXPECT_EQ(ZORPlistController::withEncryption<AppSettings>(true, kLongKey)->dictionary, defaults());
    EXPECT_EQ(filesIn(state()), 0U);
}

TEST_F(ZORPlistControllerTest, SharedIsOneObjectWithNothingLoaded) {
    ZORPlistController& shared = ZORPlistController::shared();
    EXPECT_EQ(&shared, &ZORPlistController::shared());
    EXPECT_EQ(shared.dictionary, std::nullopt);
    EXPECT_FALSE(shared.isEncrypted);
    EXPECT_EQ(shared.encryptionKey, u"");
    EXPECT_THROW(shared.persist(), ZORPlatform::NSException);
}

TEST_F(ZORPlistControllerTest, PersistWithoutADictionaryWritesNothing) {
    AppSettings settings;
    EXPECT_FALSE(settings.persist());
    EXPECT_FALSE(settings.exists());
}

TEST_F(ZORPlistControllerTest, PersistOfWhatXmlCannotHoldLeavesTheFileAndTheDictionary) {
    installDefaults();
    const auto settings = ZORPlistController::withEncryption<AppSettings>(false, u"");
    const Bytes before = readFile(file());
    settings->dictionary->insert_or_assign(u"zero", std::u16string(1, u'\0'));
    EXPECT_FALSE(settings->persist());
    EXPECT_EQ(readFile(file()), before);
    EXPECT_EQ(settings->dictionary->size(), 2U);
}

TEST_F(ZORPlistControllerTest, PersistFailsWhereTheDirectoryIsMissing) {
    installDefaults();
    const auto settings = ZORPlistController::withEncryption<AppSettings>(false, u"");
    HostEnvironment::setDocumentsDirectory(documents() / "missing");
    EXPECT_FALSE(settings->persist());
}

TEST_F(ZORPlistControllerTest, TheLegacyFileIsFoundAndRemovedButNeverRead) {
    AppSettings settings;
    EXPECT_FALSE(settings.legacySettingsPlistFileExists());
    EXPECT_FALSE(settings.removeLegacySettingsPlistFile());
    writeFile(documents() / "Settings.plist", bytesOf("legacy"));
    EXPECT_TRUE(settings.legacySettingsPlistFileExists());
    EXPECT_TRUE(settings.removeLegacySettingsPlistFile());
    EXPECT_FALSE(settings.legacySettingsPlistFileExists());
}

TEST_F(ZORPlistControllerTest, AnOverriddenDirectoryMovesEveryPath) {
    class Below : public AppSettings {
    public:
        fs::path sandboxDir() const override { return AppSettings::sandboxDir() / "below"; }
    };
    installDefaults();
    fs::create_directory(documents() / "below");
    EXPECT_EQ(ZORPlistController::withEncryption<Below>(false, u"")->dictionary, defaults());
    EXPECT_TRUE(fs::exists(documents() / "below/App.plist"));
    EXPECT_EQ(Below().dictPath(), documents() / "below/App.plist");
    EXPECT_EQ(Below().legacySettingsPlistPath(), documents() / "below/Settings.plist");
    EXPECT_TRUE(Below().exists());
    EXPECT_FALSE(AppSettings().exists());
}

TEST_F(ZORPlistControllerTest, WithAnOverriddenPathRecoveryReplacesTheFileThatIsRead) {
    class Elsewhere : public AppSettings {
    public:
        fs::path dictPath() const override { return sandboxDir() / "Elsewhere.plist"; }
    };
    installDefaults();
    writeFile(documents() / "Elsewhere.plist", bytesOf("<plist><dict/></plist>"));
    // The defaults go to the one path, and the other is read once more in vain.
    EXPECT_THROW(static_cast<void>(ZORPlistController::withEncryption<Elsewhere>(false, u"")),
                 ZORPlatform::NSException);
    EXPECT_NE(readFile(documents() / "Elsewhere.plist"), bytesOf("<plist><dict/></plist>"));
    EXPECT_FALSE(fs::exists(file()));
}

TEST_F(ZORPlistControllerTest, AnOverriddenPathIsWrittenToButNotReadFrom) {
    class Elsewhere : public AppSettings {
    public:
        fs::path dictPath() const override { return sandboxDir() / "Elsewhere.plist"; }
    };
    installDefaults();
    writeSettings("<plist><dict><key>read</key><true/></dict></plist>");
    writeFile(documents() / "Elsewhere.plist", bytesOf("<plist><dict/></plist>"));
    const auto settings = ZORPlistController::withEncryption<Elsewhere>(false, u"");
    EXPECT_EQ(settings->dictionary, (Dictionary{{u"read", true}}));
    EXPECT_TRUE(settings->persist());
    EXPECT_NE(readFile(documents() / "Elsewhere.plist"), bytesOf("<plist><dict/></plist>"));
}

TEST_F(ZORPlistControllerTest, LoadingCallsItsStepsThroughTheObjectsClassInOrder) {
    class Logging : public AppSettings {
    public:
        void installNewSettingsFile() override {
            log += "install ";
            AppSettings::installNewSettingsFile();
        }
        std::optional<Bytes> getSettingsDataEncrypted(bool encrypted, bool legacy, std::u16string_view key) override {
            log += legacy ? "legacy " : "current ";
            return AppSettings::getSettingsDataEncrypted(encrypted, legacy, key);
        }
        void removeSettingsFile() override {
            log += "remove ";
            AppSettings::removeSettingsFile();
        }
        bool persist() override {
            log += "persist ";
            return AppSettings::persist();
        }
        std::string log;
    };
    installDefaults();
    EXPECT_EQ(ZORPlistController::withEncryption<Logging>(false, u"")->log, "install persist current ");
    EXPECT_EQ(ZORPlistController::withEncryption<Logging>(false, u"")->log, "current ");
    writeSettings("damaged");
    EXPECT_EQ(ZORPlistController::withEncryption<Logging>(true, kKey)->log, "current remove install persist current ");

    // The current decryption gives bytes that are no list, and the legacy one gives nothing.
    class NoLegacy : public Logging {
    public:
        std::optional<Bytes> getSettingsDataEncrypted(bool encrypted, bool legacy, std::u16string_view key) override {
            const auto bytes = Logging::getSettingsDataEncrypted(encrypted, legacy, key);
            if (isInstalled) return bytes;
            return legacy ? std::nullopt : std::optional(bytesOf("{ no list"));
        }
        void installNewSettingsFile() override {
            isInstalled = true;
            Logging::installNewSettingsFile();
        }

    private:
        bool isInstalled = false;
    };
    EXPECT_EQ(ZORPlistController::withEncryption<NoLegacy>(true, kKey)->log,
              "current legacy remove install persist current ");

    // Neither gives a list, but both give bytes: nothing is replaced.
    class NoList : public Logging {
    public:
        std::optional<Bytes> getSettingsDataEncrypted(bool encrypted, bool legacy, std::u16string_view key) override {
            static_cast<void>(Logging::getSettingsDataEncrypted(encrypted, legacy, key));
            return bytesOf("{ no list");
        }
    };
    const auto noList = ZORPlistController::withEncryption<NoList>(true, kKey);
    EXPECT_EQ(noList->log, "current legacy ");
    EXPECT_EQ(noList->dictionary, Dictionary{});
}

}  // namespace
}  // namespace ZORFoundation
