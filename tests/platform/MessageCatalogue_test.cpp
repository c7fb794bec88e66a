#include "platform/MessageCatalogue.hpp"

#include "platform/Bundle.hpp"
#include "platform/StringFormat.hpp"
#include "tests/platform/LocaleForTests.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"
#include "tests/support/TestBundle.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <random>
#include <vector>

using platform::Bundle;
namespace files = std::filesystem;

namespace {

std::string bytesOf(std::uint32_t number) {
    return {reinterpret_cast<const char*>(&number), sizeof(number)};
}

/// A gettext catalogue of one message, in this machine's byte order and without a hash table.
std::string catalogueOf(const std::string& message, const std::string& translation) {
    constexpr std::uint32_t headerSize = 28;
    const auto messageSize = static_cast<std::uint32_t>(message.size());
    const auto translationSize = static_cast<std::uint32_t>(translation.size());
    const std::uint32_t texts = headerSize + 16;
    std::string bytes;
    for (const std::uint32_t number : {0x950412DEU, 0U, 1U, headerSize, headerSize + 8, 0U, texts, messageSize, texts,
                                       translationSize, texts + messageSize + 1}) {
        bytes += bytesOf(number);
    }
    return bytes + message + '\0' + translation + '\0';
}

files::path catalogueFile(const fake::Bundle& bundle, const std::string& domain) {
    return bundle.directory() / "locale" / "de" / "LC_MESSAGES" / (domain + ".mo");
}

/// A bundle with one German text. Each has an identifier of its own, as gettext keeps what it has once read.
class TranslatedBundle {
public:
    TranslatedBundle(const std::string& english, const std::string& german)
        : _bundle({{"Vistashade", {{"KEY", english}}}}) {
        static int count = 0;
        const std::string identifier = "org.example.translated" + std::to_string(++count);
        fake::writeFile(catalogueFile(_bundle, identifier + ".Vistashade"), catalogueOf("KEY\004" + english, german));
        _bundle.setInfo("CFBundleIdentifier", identifier);
    }

    std::string text() const { return Bundle::containing(nullptr)->localizedString("KEY", "value", "Vistashade"); }

private:
    fake::Bundle _bundle;
};

TEST(MessageCatalogue, TextsComeInTheUsersLanguage) {
    const auto locale = LocaleForTests::withLanguages("fr:de:en");
    ASSERT_NE(locale, nullptr);
    EXPECT_EQ(TranslatedBundle("Clouds", "W\u00f6lkchen").text(), "W\u00f6lkchen");
}

TEST(MessageCatalogue, TextsAreEnglishWithoutATranslation) {
    const TranslatedBundle bundle("Clouds", "Wolken");
    EXPECT_EQ(bundle.text(), "Clouds") << "in the locale C";
    const auto locale = LocaleForTests::withLanguages("fr");
    ASSERT_NE(locale, nullptr);
    EXPECT_EQ(bundle.text(), "Clouds") << "in a language that there is no catalogue for";
}

TEST(MessageCatalogue, ATranslationOfAnotherEnglishTextIsNotUsed) {
    const auto locale = LocaleForTests::withLanguages("de");
    ASSERT_NE(locale, nullptr);
    const fake::Bundle bundle({{"Vistashade", {{"KEY", "New text"}}}}, {{"CFBundleIdentifier", "org.example.old"}});
    fake::writeFile(catalogueFile(bundle, "org.example.old.Vistashade"), catalogueOf("KEY\004Old text", "Alter Text"));
    EXPECT_EQ(Bundle::open(bundle.directory())->localizedString("KEY", "", "Vistashade"), "New text");
}

TEST(MessageCatalogue, ABundleWithoutIdentifierIsEnglish) {
    const auto locale = LocaleForTests::withLanguages("de");
    ASSERT_NE(locale, nullptr);
    const fake::TemporaryDirectory directory;
    fake::writeFile(directory.path() / "strings" / "Localizable.json", R"({"KEY": "text"})");
    EXPECT_EQ(Bundle::open(directory.path())->localizedString("KEY", "KEY", ""), "text");
}

TEST(MessageCatalogue, BundlesOfTheSameIdentifierKeepTheirOwnTranslations) {
    const auto locale = LocaleForTests::withLanguages("de");
    ASSERT_NE(locale, nullptr);
    std::vector<std::unique_ptr<fake::TemporaryDirectory>> directories;
    std::vector<std::shared_ptr<const Bundle>> bundles;
    for (const char* text : {"eins", "zwei"}) {
        directories.push_back(std::make_unique<fake::TemporaryDirectory>());
        const files::path& path = directories.back()->path();
        fake::writeFile(path / "Info.json", R"({"CFBundleIdentifier": "org.example.twin"})");
        fake::writeFile(path / "strings" / "Localizable.json", R"({"KEY": "text"})");
        fake::writeFile(path / "locale" / "de" / "LC_MESSAGES" / "org.example.twin.Localizable.mo",
                        catalogueOf("KEY\004text", text));
        bundles.push_back(Bundle::open(path));
    }
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(bundles[0]->localizedString("KEY", "", ""), "eins");
        EXPECT_EQ(bundles[1]->localizedString("KEY", "", ""), "zwei");
    }
}

TEST(MessageCatalogue, ATranslationWithOtherArgumentsDoesNoHarm) {
    const auto locale = LocaleForTests::withLanguages("de");
    ASSERT_NE(locale, nullptr);
    const TranslatedBundle bundle("%@ %ld", "%2$@ %s %9$@ %n %1$lf");
    EXPECT_EQ(platform::formatted(bundle.text(), "Wolke", 7), "7 Wolke (null) %n Wolke");
}

/// Looks up every text of the built German catalogue after it was changed, in a bundle made for it.
void lookUpInDamagedCatalogue(const std::string& bytes) {
    static int count = 0;
    const std::string identifier = "org.example.damaged" + std::to_string(++count);
    fake::Bundle bundle;
    fake::writeFile(bundle.directory() / "strings" / "Vistashade.json",
                    fake::readFile(CIRRANE_BUILT_BUNDLE "/strings/Vistashade.json"));
    fake::writeFile(catalogueFile(bundle, identifier + ".Vistashade"), bytes);
    bundle.setInfo("CFBundleIdentifier", identifier);
    const auto opened = Bundle::containing(nullptr);
    for (const char* key : {"QZL_JOURNAL_MESSAGE_FORMAT", "QZL_ERROR_UNKNOWN", "QZL_UI_REPORT_ERROR_FORMAT"}) {
        EXPECT_NE(opened->localizedString(key, "missing", "Vistashade"), "missing");
    }
}

TEST(MessageCatalogue, ADamagedCatalogueDoesNoHarm) {
    const auto locale = LocaleForTests::withLanguages("de");
    ASSERT_NE(locale, nullptr);
    const std::string sound =
        fake::readFile(CIRRANE_BUILT_BUNDLE "/locale/de/LC_MESSAGES/org.example.cirrane.Vistashade.mo");
    ASSERT_GT(sound.size(), 4096U);
    for (std::size_t size = 0; size < sound.size(); size += 211) {
        lookUpInDamagedCatalogue(sound.substr(0, size));
    }
    std::mt19937 random(1);
    for (int round = 0; round < 100; ++round) {
        std::string damaged = sound;
        // Numbers lie in the first kilobyte: there damage could lead gettext astray.
        damaged.replace(4 * (random() % 256), 4, bytesOf(round % 2 == 0 ? random() : 0x7FFFFFFF));
        lookUpInDamagedCatalogue(damaged);
    }
}

TEST(MessageCatalogue, ATruncatedCatalogueReadsAsUntranslated) {
    const auto locale = LocaleForTests::withLanguages("de");
    ASSERT_NE(locale, nullptr);
    fake::Bundle bundle({{"Localizable", {{"KEY", "text"}}}});
    const std::string catalogue = catalogueOf("KEY\004text", "Wortlaut");
    fake::writeFile(catalogueFile(bundle, "org.example.cut.Localizable"), catalogue.substr(0, catalogue.size() - 1));
    bundle.setInfo("CFBundleIdentifier", "org.example.cut");
    EXPECT_EQ(Bundle::containing(nullptr)->localizedString("KEY", "", ""), "text");
    fake::writeFile(catalogueFile(bundle, "org.example.whole.Localizable"), catalogue);
    bundle.setInfo("CFBundleIdentifier", "org.example.whole");
    EXPECT_EQ(Bundle::containing(nullptr)->localizedString("KEY", "", ""), "Wortlaut");
}

}  // namespace
