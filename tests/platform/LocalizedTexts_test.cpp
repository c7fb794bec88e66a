#include "platform/Bundle.hpp"
#include "platform/StringFormat.hpp"
#include "tests/platform/LocaleForTests.hpp"
#include "tests/support/TestBundle.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <string>
#include <vector>

using platform::FormatArgument;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

/// A key that the module looks up, what it fills the text with, and what the person then has to see of that.
struct Text {
    std::string table;
    std::string key;
    std::vector<FormatArgument> arguments;
    std::vector<std::string> shown;
};

const std::vector<FormatArgument> statistics{59.94, 1.25, 2.5, 3.75, 22.0, 16.68};

const std::vector<Text> texts{
    {"", "QZL_ERROR_MEMORY", {}, {}},
    {"Vistashade", "QZL_JOURNAL_MESSAGE_FORMAT", {"[Preview] ", "Started."}, {"[Preview] Started.\n"}},
    {"Vistashade", "QZL_JOURNAL_LOG_FORMAT", {"Name: ", "[Preview] ", "Started."}, {"Name: [Preview] Started."}},
    {"Vistashade", "QZL_ERROR_GENERAL_INTERNAL_ERROR", {}, {}},
    {"Vistashade", "QZL_ERROR_DISPLAY_LINK_INITIALIZE", {}, {}},
    {"Vistashade", "QZL_ERROR_METAL_NOT_AVAILABLE", {}, {}},
    {"Vistashade", "QZL_ERROR_METAL_FEATURE_SET", {}, {}},
    {"Vistashade", "QZL_ERROR_METAL_RESOURCES", {}, {}},
    {"Vistashade", "QZL_ERROR_UNKNOWN", {}, {}},
    {"Vistashade", "QZL_ERROR_MACOS_VERSION_2", {"Name", 10, 13, 0}, {"Name", "Vulkan 1.3"}},
    {"Vistashade", "QZL_ERROR_MACOS_VERSION_3", {"Name", 10, 13, 2}, {"Name", "Vulkan 1.3"}},
    {"Vistashade", "QZL_ERROR_FORMAT_TITLE", {"Name", "1.2.3"}, {"Name 1.2.3"}},
    {"Vistashade", "QZL_ERROR_FORMAT_SIMPLE", {"Message.", std::int64_t{302}, std::int64_t{0}}, {"Message.", "302"}},
    {"Vistashade",
     "QZL_ERROR_FORMAT_EXTENDED",
     {"Message.", std::int64_t{105}, std::int64_t{-1003}},
     {"Message.", "105", "-1003"}},
    {"Vistashade", "QZL_DIAG_FORMAT_NORMAL", statistics, {"59.94", "1.25", "2.50", "3.75", "22", "16.68"}},
    {"Vistashade", "QZL_DIAG_FORMAT_PREVIEW", statistics, {"59.9", "1.2", "2.5", "3.8", "22"}},
    {"Vistashade",
     "QZL_UI_APP_VERSION_COPYRIGHT_FORMAT",
     {"Name", "1.2.3", "Copyright 2026"},
     {"Name 1.2.3", "Copyright 2026"}},
    {"Vistashade", "QZL_UI_MAILTO_FORMAT", {"a%40b", "Name", "1%2E2"}, {"mailto:a%40b?", "Name%201%2E2"}},
    {"Vistashade",
     "QZL_UI_REPORT_ERROR_BODY_FORMAT",
     {"Name", "1.2.3", "10.13.0", std::int64_t{105}, std::int64_t{-1003}, "[Screen] Started.\n"},
     {"Name 1.2.3", "10.13.0", "105", "-1003", "[Screen] Started.\n"}},
    {"Vistashade",
     "QZL_UI_REPORT_ERROR_FORMAT",
     {"a%40b", "Name", "The%20body"},
     {"mailto:a%40b?", "Name", "&body=The%20body"}},
};

std::string unfilled(const Text& text) {
    return platform::Bundle::containing(nullptr)->localizedString(text.key, "(missing)", text.table);
}

std::string filled(const Text& text) {
    return platform::formatString(unfilled(text), text.arguments);
}

std::string filled(const std::string& key, const std::vector<FormatArgument>& arguments) {
    return filled(Text{"Vistashade", key, arguments, {}});
}

bool isAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

/// True when every percent sign begins an escape of two hexadecimal digits, and no character needs one.
bool isValidAddress(const std::string& text) {
    for (std::size_t index = 0; index < text.size(); ++index) {
        const auto digit = [&](std::size_t at) { return at < text.size() && std::isxdigit(text[at]) != 0; };
        if (text[index] == '%' ? !(digit(index + 1) && digit(index + 2)) : std::isgraph(text[index]) == 0) {
            return false;
        }
    }
    return true;
}

/// Runs in the language of the parameter.
class LocalizedTexts : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        _locale = LocaleForTests::withLanguages(GetParam());
        ASSERT_NE(_locale, nullptr);
    }

private:
    fake::BuiltBundle _bundle;
    std::unique_ptr<LocaleForTests> _locale;
};

INSTANTIATE_TEST_SUITE_P(In, LocalizedTexts, testing::Values("en", "de", "es", "fr", "ja"),
                         [](const auto& language) { return language.param; });

TEST_P(LocalizedTexts, ExistForEveryKeyAndShowTheirArguments) {
    for (const Text& text : texts) {
        const std::string result = filled(text);
        EXPECT_THAT(result, Not(HasSubstr("(missing)"))) << text.key;
        EXPECT_THAT(result, Not(HasSubstr("(null)"))) << text.key;
        EXPECT_THAT(result, Not(HasSubstr("%@"))) << text.key;
        EXPECT_FALSE(result.empty()) << text.key;
        for (const std::string& part : text.shown) {
            EXPECT_THAT(result, HasSubstr(part)) << text.key;
        }
    }
}

TEST_P(LocalizedTexts, HoldPercentSignsOnlyInAddressesAndLoads) {
    for (const Text& text : texts) {
        if (text.key.find("DIAG") == std::string::npos && !filled(text).starts_with("mailto:")) {
            EXPECT_THAT(filled(text), Not(HasSubstr("%"))) << text.key;
        }
    }
}

TEST_P(LocalizedTexts, WithoutArgumentsAreSentences) {
    for (const Text& text : texts) {
        if (text.arguments.empty()) {
            EXPECT_THAT(filled(text), EndsWith(GetParam() == "ja" ? "\u3002" : ".")) << text.key;
            EXPECT_GT(filled(text).size(), 40U) << text.key;
        }
    }
}

TEST_P(LocalizedTexts, OfMailsAreValidAddresses) {
    const std::string contact = filled("QZL_UI_MAILTO_FORMAT", {"a%40b%2Eorg", "Name", "1%2E2"});
    EXPECT_THAT(contact, StartsWith("mailto:a%40b%2Eorg?subject=Name%201%2E2"));
    EXPECT_TRUE(isValidAddress(contact)) << contact;
    const std::string report = filled("QZL_UI_REPORT_ERROR_FORMAT", {"a%40b%2Eorg", "Name", "one%0D%0Atwo"});
    EXPECT_THAT(report, StartsWith("mailto:a%40b%2Eorg?subject=Name%20"));
    EXPECT_THAT(report, EndsWith("&body=one%0D%0Atwo"));
    EXPECT_TRUE(isValidAddress(report)) << report;
}

TEST_P(LocalizedTexts, OfAReportSurviveTheWayIntoAMail) {
    EXPECT_TRUE(isAscii(unfilled({"Vistashade", "QZL_UI_REPORT_ERROR_BODY_FORMAT", {}, {}})));
}

TEST_P(LocalizedTexts, OfDiagnosticsKeepTheirWidth) {
    for (const auto& [key, longest] : {std::pair{"QZL_DIAG_FORMAT_NORMAL", 80U}, {"QZL_DIAG_FORMAT_PREVIEW", 40U}}) {
        const std::string idle = filled(key, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0});
        const std::string busy = filled(key, {144.0, 123.4, 234.5, 357.9, 100.0, 358.9});
        EXPECT_EQ(idle.size(), busy.size()) << idle << "\n" << busy;
        EXPECT_LE(busy.size(), longest) << busy;
        EXPECT_THAT(busy, HasSubstr("%"));
    }
}

TEST_P(LocalizedTexts, EndTheirLinesWhereNothingElseDoes) {
    EXPECT_THAT(filled("QZL_JOURNAL_MESSAGE_FORMAT", {"", "Started."}), EndsWith("Started.\n"));
    EXPECT_THAT(filled("QZL_JOURNAL_LOG_FORMAT", {"", "", "Started."}), EndsWith("Started."));
    EXPECT_THAT(filled("QZL_ERROR_FORMAT_TITLE", {"Name", "1.2.3"}), EndsWith("\n"));
}

TEST(LocalizedTextsInGerman, SpeakGerman) {
    const fake::BuiltBundle bundle;
    const auto locale = LocaleForTests::withLanguages("de");
    ASSERT_NE(locale, nullptr);
    EXPECT_THAT(unfilled({"", "QZL_ERROR_MEMORY", {}, {}}), StartsWith("F\u00fcr die Wolken"));
    EXPECT_THAT(filled("QZL_ERROR_FORMAT_SIMPLE", {"x", 302, 0}), HasSubstr("Fehler 302"));
}

TEST(InformationList, OfTheBuiltBundleIsComplete) {
    const fake::BuiltBundle built;
    const auto bundle = platform::Bundle::containing(nullptr);
    EXPECT_EQ(bundle->bundleIdentifier(), "org.example.cirrane");
    const auto value = [&](const char* key) { return bundle->objectForInfoDictionaryKey(key).value_or("(missing)"); };
    EXPECT_EQ(value("CFBundleName"), "Cirrane");
    EXPECT_EQ(value("CFBundleShortVersionString"), CIRRANE_VERSION);
    EXPECT_EQ(value("NSHumanReadableCopyright"), "Copyright \u00a9 2026 The Cirrane authors");
    EXPECT_THAT(value("QZLEmailAddress"), HasSubstr("@"));
    EXPECT_THAT(value("QZLWebsiteAddress"), StartsWith("http"));
    EXPECT_EQ(value("SaverEntryPoint"), "cirraneSaverModule");
    EXPECT_EQ(value("SaverLibrary"), "Cirrane.so");
    EXPECT_NE(bundle->pathForResource("default", "metallib"), std::nullopt);
}

}  // namespace
