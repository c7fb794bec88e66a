// The catalogues of the built bundle against its English texts, of whatever tables and forms it has.
#include "platform/Bundle.hpp"
#include "tests/platform/LocaleForTests.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TestBundle.hpp"

#include <libintl.h>

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <QtCore/QXmlStreamReader>
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

/// A key and its English text, or the name of a form and a text on it.
using Message = std::pair<std::string, std::string>;
using Messages = std::set<Message>;

Messages messagesOfTable(const std::string& bytes) {
    const auto table = nlohmann::json::parse(bytes).get<std::map<std::string, std::string>>();
    return {table.begin(), table.end()};
}

Messages messagesOfForm(const std::string& bytes) {
    Messages messages;
    std::string form;
    QXmlStreamReader reader(QByteArray::fromStdString(bytes));
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (reader.name() == QStringLiteral("class")) {
            form = reader.readElementText().toStdString();
        } else if (reader.name() == QStringLiteral("string") &&
                   reader.attributes().value(QStringLiteral("notr")) != QStringLiteral("true")) {
            messages.emplace(form, reader.readElementText().toStdString());
        }
    }
    if (reader.hasError()) {
        throw std::runtime_error(reader.errorString().toStdString());
    }
    return messages;
}

/// The arguments that a format takes, by their numbers: their types, such as "@" and "ld".
std::map<int, std::string> argumentsOf(const std::string& format) {
    static const std::regex conversion(R"(%(?:(\d+)\$)?[-+ #0]*\d*(?:\.\d+)?([hlqz]*[@a-zA-Z%]))");
    std::map<int, std::string> arguments;
    for (std::sregex_iterator found(format.begin(), format.end(), conversion), end; found != end; ++found) {
        if ((*found)[2] != "%") {
            const bool isNumbered = (*found)[1].matched;
            arguments[isNumbered ? std::stoi((*found)[1]) : static_cast<int>(arguments.size()) + 1] = (*found)[2];
        }
    }
    return arguments;
}

class Translations : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        _locale = LocaleForTests::withLanguages(GetParam());
        ASSERT_NE(_locale, nullptr);
        for (const auto& file : std::filesystem::directory_iterator(directory() / "strings")) {
            texts[file.path().stem()] = messagesOfTable(fake::readFile(file.path()));
        }
        for (const auto& file : std::filesystem::directory_iterator(directory())) {
            if (file.path().extension() == ".ui") {
                texts[file.path().stem()] = messagesOfForm(fake::readFile(file.path()));
            }
        }
        ASSERT_EQ(texts.size(), 4U) << "three tables and a form";
    }

    static std::filesystem::path directory() { return platform::Bundle::containing(nullptr)->directory(); }
    static std::string domainOf(const std::string& name) { return "org.example.cirrane." + name; }

    /// Calls with every text of every table and form, and its translation, which is null where there is none.
    template <typename Call>
    void forEachTranslation(const Call& call) const {
        for (const auto& [name, messages] : texts) {
            const std::string domain = domainOf(name);
            bindtextdomain(domain.c_str(), (directory() / "locale").c_str());
            bind_textdomain_codeset(domain.c_str(), "UTF-8");
            for (const auto& [context, english] : messages) {
                const std::string message = context + '\004' + english;
                const char* const translation = dgettext(domain.c_str(), message.c_str());
                call(context, english, translation != message.c_str() ? translation : nullptr);
            }
        }
    }

    fake::BuiltBundle bundle;
    std::map<std::string, Messages> texts;  // by table or form

private:
    std::unique_ptr<LocaleForTests> _locale;
};

const std::vector<std::string> languages{"de", "es", "fr", "ja"};

INSTANTIATE_TEST_SUITE_P(Into, Translations, testing::ValuesIn(languages),
                         [](const auto& language) { return language.param; });

TEST_P(Translations, AreThereForEveryTextAsItStandsInEnglishNow) {
    int count = 0;
    forEachTranslation([&](const std::string& context, const std::string& english, const char* translation) {
        ++count;
        EXPECT_TRUE(translation != nullptr && *translation != '\0') << context << ": " << english;
    });
    EXPECT_GT(count, 100);
}

TEST_P(Translations, AreThereForNoTextThatIsGone) {
    for (const auto& [name, messages] : texts) {
        const std::string catalogue =
            fake::readFile(directory() / "locale" / GetParam() / "LC_MESSAGES" / (domainOf(name) + ".mo"));
        constexpr std::size_t place = 8;  // of the number of messages, in a catalogue of this machine's byte order
        std::uint32_t count = 0;
        ASSERT_GT(catalogue.size(), place + sizeof(count)) << name;
        std::memcpy(&count, catalogue.data() + place, sizeof(count));
        EXPECT_EQ(count, messages.size() + 1) << name << ": each text, and what stands first";
    }
}

TEST_P(Translations, TakeTheArgumentsThatTheirEnglishTakes) {
    forEachTranslation([](const std::string& context, const std::string& english, const char* translation) {
        EXPECT_EQ(argumentsOf(translation != nullptr ? translation : ""), argumentsOf(english)) << context;
    });
}

TEST_P(Translations, HaveAKeyToPressWithAltWhereTheirEnglishHas) {
    forEachTranslation([](const std::string& context, const std::string& english, const char* translation) {
        const std::string translated = translation != nullptr ? translation : "";
        const bool isAddress = english.starts_with("mailto:");
        EXPECT_TRUE(isAddress || std::ranges::count(translated, '&') == std::ranges::count(english, '&'))
            << context << ": " << translated;
    });
}

TEST(TranslationsOfTheBuiltBundle, AreIntoTheseLanguages) {
    const fake::BuiltBundle bundle;
    std::vector<std::string> found;
    for (const auto& language :
         std::filesystem::directory_iterator(platform::Bundle::containing(nullptr)->directory() / "locale")) {
        found.push_back(language.path().filename());
    }
    std::ranges::sort(found);
    EXPECT_EQ(found, languages);
}

TEST(TranslationsOfTheBuiltBundle, AreComparedWithFormatsThatCanBeTold) {
    using Arguments = std::map<int, std::string>;
    EXPECT_EQ(argumentsOf("%@ 100%% %5.1lf%% %-3ld"), (Arguments{{1, "@"}, {2, "lf"}, {3, "ld"}}));
    EXPECT_EQ(argumentsOf("%2$@ %1$ld"), (Arguments{{1, "ld"}, {2, "@"}}));
    EXPECT_EQ(argumentsOf("none"), Arguments());
}

}  // namespace
