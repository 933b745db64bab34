// SPDX-License-Identifier: Apache-2.0
#pragma once

// A gettext catalogue of a test's own, in force as long as the object lives.
//
//     const TranslationCatalogue dutch("UTF-8", {{"Success", "Gelukt"}});

#include <ZORPlatform/Foundation/HostEnvironment.h>

#include <support/EnvironmentVariable.h>
#include <support/TemporaryDirectory.h>

#include <libintl.h>

#include <atomic>
#include <clocale>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>

namespace support {

class TranslationCatalogue {
public:
    /// @param charset   of the file; keys and translations are bytes in it
    /// @param messages  translations by key
    TranslationCatalogue(const std::string& charset, std::map<std::string, std::string> messages) {
        messages.emplace("", "Content-Type: text/plain; charset=" + charset + "\n");
        directory_.write("nl/LC_MESSAGES/" + domain_ + ".mo", fileContent(messages));
        bindtextdomain(domain_.c_str(), directory_.path().c_str());
        if (std::setlocale(LC_MESSAGES, "C.UTF-8") == nullptr) throw std::runtime_error("no locale C.UTF-8");
        ZORPlatform::HostEnvironment::setTextDomain(domain_);
    }
    ~TranslationCatalogue() {
        ZORPlatform::HostEnvironment::setTextDomain(std::nullopt);
        std::setlocale(LC_MESSAGES, "C");
    }
    TranslationCatalogue(const TranslationCatalogue&) = delete;
    TranslationCatalogue& operator=(const TranslationCatalogue&) = delete;

private:
    // gettext keeps a domain that it has read for good, so each catalogue has a domain of its own.
    static std::string uniqueDomain() {
        static std::atomic<int> count = 0;
        return "zor-test-" + std::to_string(++count);
    }

    // The layout of GNU gettext's MO files: seven numbers, a table of keys in ascending order, a table of
    // translations, and the texts, each closed by a NUL.
    static std::string fileContent(const std::map<std::string, std::string>& messages) {
        const auto count = static_cast<std::uint32_t>(messages.size());
        constexpr std::uint32_t kHeaderBytes = 28;
        constexpr std::uint32_t kRowBytes = 8;
        std::string keyTable;
        std::string translationTable;
        std::string texts;
        const auto add = [&](std::string& table, const std::string& text) {
            append(table, static_cast<std::uint32_t>(text.size()));
            append(table, kHeaderBytes + 2 * kRowBytes * count + static_cast<std::uint32_t>(texts.size()));
            texts += text + '\0';
        };
        for (const auto& [key, translation] : messages) {
            add(keyTable, key);
            add(translationTable, translation);
        }
        std::string file;
        for (const std::uint32_t number :
             {0x950412DEU, 0U, count, kHeaderBytes, kHeaderBytes + kRowBytes * count, 0U, 0U}) {
            append(file, number);
        }
        return file + keyTable + translationTable + texts;
    }
    static void append(std::string& bytes, std::uint32_t number) {
        bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
    }

    TemporaryDirectory directory_;
    std::string domain_ = uniqueDomain();
    EnvironmentVariable language_{"LANGUAGE", "nl"};
};

}  // namespace support
