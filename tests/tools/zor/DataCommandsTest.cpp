// SPDX-License-Identifier: Apache-2.0
//
// hash, base64, encrypt and decrypt as programs and people use them.

#include "ZorProcess.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <random>

namespace zor::testing {
namespace {

namespace fs = std::filesystem;

std::string randomBytes(std::size_t count) {
    std::mt19937 random(static_cast<std::mt19937::result_type>(count));
    std::string bytes(count, '\0');
    std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<char>(random()); });
    return bytes;
}

std::string fromHex(std::string_view hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes.push_back(static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
    }
    return bytes;
}

class DataCommands : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "zor-data-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        directory_ = pattern;
    }
    void TearDown() override { fs::remove_all(directory_); }

    std::string file(const std::string& name, std::string_view content) {
        const fs::path path = directory_ / name;
        std::ofstream(path, std::ios::binary) << content;
        return path.string();
    }
    // The option that names a file of that content.
    std::string keyFile(std::string_view content) { return "--key-file=" + file("key", content); }

private:
    fs::path directory_;
};

TEST_F(DataCommands, HashReadsStandardInputOrAFile) {
    const std::string sha256 = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad\n";
    EXPECT_EQ(runZor({"hash", "sha256"}, "abc").out, sha256);
    EXPECT_EQ(runZor({"hash", "sha256", "-"}, "abc").out, sha256);
    EXPECT_EQ(runZor({"hash", "sha256", file("abc", "abc")}).out, sha256);
    EXPECT_EQ(runZor({"hash", "md5"}, std::string("abc\0def", 7)).out, "a5e4d5963ae44c1f4bfb37b1a3d55a3c\n");
    EXPECT_EQ(runZor({"hash", "sha1"}, std::string(1'000'000, 'a')).out, "34aa973cd4c4daa4f61eeb2bdbad27316534016f\n");
}

TEST_F(DataCommands, HashFailsWithoutADigest) {
    EXPECT_EQ(runZor({"hash"}).exitCode, 2);
    EXPECT_EQ(runZor({"hash", "sha3"}).exitCode, 2);
    EXPECT_EQ(runZor({"hash", "md5", "/nonexistent/file"}).exitCode, 3);
    EXPECT_EQ(runZor({"hash", "md5", "/nonexistent/file"}).out, "");
}

TEST_F(DataCommands, Base64WritesNothingBesidesTheText) {
    EXPECT_EQ(runZor({"base64", "encode"}, "fooba").out, "Zm9vYmE=");
    EXPECT_EQ(runZor({"base64", "encode", "--line-length=4"}, "fooba").out, "Zm9v\nYmE=\n");
    EXPECT_EQ(runZor({"base64", "encode", "--codec=zorbase64"}, std::string(49, '\0')).out,
              std::string(64, 'A') + "\r\nAA==");
    EXPECT_EQ(runZor({"base64", "encode"}, "").out, "");
}

TEST_F(DataCommands, Base64BringsAnyBytesBack) {
    for (const std::size_t size : {0U, 1U, 48U, 49152U, 49153U, 98304U, 300001U}) {
        const std::string bytes = randomBytes(size);
        for (const Words& options : {Words{"--codec=zoraescrypt"}, Words{"--codec=zorbase64"}}) {
            const std::string text = runZor({"base64", "encode", options[0]}, bytes).out;
            EXPECT_EQ(runZor({"base64", "decode", options[0]}, text).out, bytes) << options[0] << size;
        }
        const std::string lines = runZor({"base64", "encode", "--line-length=76"}, bytes).out;
        EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), (size + 2) / 3 / 19);
        EXPECT_EQ(runZor({"base64", "decode"}, lines).out, bytes);
    }
}

TEST_F(DataCommands, CodecsDifferAsTheLibraryHasThem) {
    EXPECT_EQ(runZor({"base64", "decode"}, "QUJD\n").out, "ABC");
    EXPECT_EQ(runZor({"base64", "decode", "--codec=zorbase64"}, "QUJD\n").out, "AB");
    EXPECT_EQ(runZor({"base64", "decode"}, "QQ").out, "");
    EXPECT_EQ(runZor({"base64", "decode", "--codec=zorbase64"}, "QQ").out, "A");
    const RunResult notAscii = runZor({"base64", "decode"}, "QUJD\u00E9");
    EXPECT_EQ(notAscii.exitCode, 1);
    EXPECT_EQ(notAscii.out, "");
}

TEST_F(DataCommands, Base64RefusesWhatItDoesNotKnow) {
    EXPECT_EQ(runZor({"base64"}).exitCode, 2);
    EXPECT_EQ(runZor({"base64", "recode"}).exitCode, 2);
    EXPECT_EQ(runZor({"base64", "encode", "--codec=other"}).exitCode, 2);
    EXPECT_EQ(runZor({"base64", "encode", "--line-length=-1"}).exitCode, 2);
    EXPECT_EQ(runZor({"base64", "decode", "--line-length=4"}).exitCode, 2);
}

TEST_F(DataCommands, EncryptWritesWhatTheLibraryWrites) {
    const std::string key = keyFile("0123456789\n");
    EXPECT_EQ(runZor({"encrypt", "--cipher=aes256", key}, "").out, fromHex("022dc00e51a5dd8fa4017b482d08d007"));
    EXPECT_EQ(runZor({"encrypt", "--cipher=aes128", key}, "").out, fromHex("0cb154389a0b3e389d834aea0fdf8497"));
}

TEST_F(DataCommands, DecryptBringsAnyBytesBack) {
    const std::string key = keyFile("a key of more than thirty-two characters");
    for (const std::size_t size : {0U, 15U, 16U, 65535U, 65536U, 65537U, 300000U}) {
        const std::string bytes = randomBytes(size);
        for (const char* const cipher : {"--cipher=aes256", "--cipher=aes128"}) {
            const std::string sealed = runZor({"encrypt", cipher, key}, bytes).out;
            const RunResult opened = runZor({"decrypt", cipher, key}, sealed);
            EXPECT_EQ(opened.exitCode, 0);
            EXPECT_EQ(opened.out, bytes) << cipher << size;
        }
    }
}

TEST_F(DataCommands, OneLineEndIsNoPartOfTheKeyUnlessAsked) {
    const std::string sealed = runZor({"encrypt", "--cipher=aes256", keyFile("key")}, "text").out;
    EXPECT_EQ(runZor({"decrypt", "--cipher=aes256", keyFile("key\n")}, sealed).out, "text");
    EXPECT_EQ(runZor({"decrypt", "--cipher=aes256", keyFile("key\r\n")}, sealed).out, "text");
    EXPECT_EQ(runZor({"decrypt", "--cipher=aes256", keyFile("key\n\n")}, sealed).exitCode, 1);
    EXPECT_EQ(runZor({"decrypt", "--cipher=aes256", keyFile("key\n"), "--key-file-exact"}, sealed).exitCode, 1);
    EXPECT_EQ(runZor({"encrypt", "--cipher=aes256", keyFile("\xFF")}, "text").exitCode, 2);
}

TEST_F(DataCommands, WrongKeysAndCutDataExitWithOne) {
    const std::string sealed = runZor({"encrypt", "--cipher=aes256", keyFile("key")}, "text").out;
    const RunResult wrongKey = runZor({"decrypt", "--cipher=aes256", keyFile("yek")}, sealed);
    EXPECT_EQ(wrongKey.exitCode, 1);
    EXPECT_EQ(wrongKey.out, "");
    EXPECT_EQ(wrongKey.err.find("yek"), std::string::npos);
    EXPECT_EQ(runZor({"decrypt", "--cipher=aes256", keyFile("key")}, sealed.substr(1)).exitCode, 1);
    EXPECT_EQ(runZor({"decrypt", "--cipher=aes256", keyFile("key")}, "").exitCode, 1);
}

TEST_F(DataCommands, DataOfPhonesUnderOverlongKeysIsReadOnRequest) {
    // A phone left the key buffer zero for such a key, as the empty key does.
    const std::string sealed = runZor({"encrypt", "--cipher=aes128", keyFile("")}, "text").out;
    const std::string key = keyFile("0123456789abcdefg");
    EXPECT_EQ(runZor({"decrypt", "--cipher=aes128", key}, sealed).exitCode, 1);
    EXPECT_EQ(runZor({"decrypt", "--cipher=aes128", key, "--key-overflow=zero"}, sealed).out, "text");
    EXPECT_EQ(runZor({"encrypt", "--cipher=aes128", key, "--key-overflow=zero"}, "text").exitCode, 2);
    EXPECT_EQ(runZor({"decrypt", "--cipher=aes128", key, "--key-overflow=ones"}, sealed).exitCode, 2);
}

TEST_F(DataCommands, LegacyKeysKeepTheirFirstByte) {
    const std::string thirtyTwo = "abcdefghijklmnopqrstuvwxyz012345";
    const std::string sealed = runZor({"encrypt", "--cipher=aes256", keyFile(thirtyTwo)}, "text").out;
    const std::string longer = keyFile(thirtyTwo + "6");
    EXPECT_EQ(runZor({"decrypt", "--cipher=aes256", "--legacy", longer}, sealed).out, "text");
    EXPECT_EQ(runZor({"decrypt", "--cipher=aes256", longer}, sealed).exitCode, 1);
    EXPECT_EQ(runZor({"decrypt", "--cipher=aes128", "--legacy", longer}, sealed).exitCode, 2);
}

TEST_F(DataCommands, MemoryDoesNotGrowWithTheData) {
    // A child begins as a copy of this process, so the data must not be in it.
    const std::string key = keyFile("key");
    const std::string small = file("small", randomBytes(1000));
    const std::string large = file("large", randomBytes(20'000'000));
    const long few = runZor({"encrypt", "--cipher=aes256", key, small}).peakKilobytes;
    const long many = runZor({"encrypt", "--cipher=aes256", key, large}).peakKilobytes;
    EXPECT_LT(many, few + 2000);
}

// Types lines at a terminal of the command's own. @return what the terminal shows; `status` gets how the command ended
std::string typed(const std::vector<std::string>& lines, Words words, int& status) {
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        words.insert(words.begin(), ZOR_PROGRAM);
        std::vector<char*> arguments;
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        ::execv(ZOR_PROGRAM, arguments.data());
        ::_exit(127);
    }
    std::string shown;
    std::size_t next = 0;
    std::array<char, 256> buffer{};
    for (ssize_t count = 0; (count = ::read(terminal, buffer.data(), buffer.size())) > 0;) {
        shown.append(buffer.data(), static_cast<std::size_t>(count));
        // A prompt ends with a colon and a space.
        if (shown.ends_with(": ") && next < lines.size()) {
            const std::string line = lines[next++] + "\n";
            EXPECT_EQ(::write(terminal, line.data(), line.size()), static_cast<ssize_t>(line.size()));
        }
    }
    ::close(terminal);
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return shown;
}

TEST_F(DataCommands, TheTerminalAsksForTheKeyAndDoesNotShowIt) {
    const std::string plain = file("plain", "text");
    int status = 0;
    const std::string shown = typed({"a secret", "a secret"}, {"encrypt", "--cipher=aes256", plain}, status);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(shown.find("a secret"), std::string::npos);
    EXPECT_NE(shown.find("Key: "), std::string::npos);
    EXPECT_NE(shown.find("Key again: "), std::string::npos);

    const std::string sealed = file("sealed", runZor({"encrypt", "--cipher=aes256", keyFile("a secret")}, "text").out);
    EXPECT_TRUE(typed({"a secret"}, {"decrypt", "--cipher=aes256", sealed}, status).ends_with("text"));
    typed({"a secret", "a slip"}, {"encrypt", "--cipher=aes256", plain}, status);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 2);
}

TEST_F(DataCommands, TheEndOfTheInputIsNoKeyAndAnEmptyLineIsTheEmptyOne) {
    const std::string plain = file("plain", "text");
    const std::string endOfInput = "\x04";
    int status = 0;
    typed({endOfInput, endOfInput}, {"encrypt", "--cipher=aes256", plain}, status);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 2);
    const std::string sealed = file("sealed", runZor({"encrypt", "--cipher=aes256", keyFile("")}, "text").out);
    EXPECT_TRUE(typed({""}, {"decrypt", "--cipher=aes256", sealed}, status).ends_with("text"));
}

TEST_F(DataCommands, AKeyIsNeverAWordOfTheCommandLine) {
    EXPECT_EQ(runZor({"encrypt", "--cipher=aes256", "--key=secret"}, "text").exitCode, 2);
    EXPECT_EQ(runZor({"encrypt", "--cipher=aes256", "file", "secret"}, "text").exitCode, 2);
    EXPECT_EQ(runZor({"encrypt", keyFile("key")}, "text").exitCode, 2);
    EXPECT_EQ(runZor({"encrypt", "--cipher=des", keyFile("key")}, "text").exitCode, 2);
}

}  // namespace
}  // namespace zor::testing
