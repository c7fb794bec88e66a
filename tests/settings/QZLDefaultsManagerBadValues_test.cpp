#include "settings/QZLDefaultsManager.hpp"

#include "tests/settings/DefaultsManagerFixture.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <cstdint>
#include <filesystem>
#include <limits>
#include <ostream>
#include <string>

namespace {

constexpr float largestFloat = std::numeric_limits<float>::max();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

/// A text behind a key of the settings file, and what it reads as.
struct Value {
    const char* name;
    std::string text;
    float number;
    std::int64_t integer;
};

void PrintTo(const Value& value, std::ostream* stream) {
    *stream << value.name;
}

/// A settings file that somebody else wrote.
class QZLDefaultsManagerFile : public DefaultsManagerFixture {
protected:
    void read(const std::string& contents) {
        fake::writeFile(file, contents);
        platform::setPreferencesStore(platform::makeFilePreferencesStore(file));
        manager.registerDefaults();
    }

    fake::TemporaryDirectory directory;
    std::filesystem::path file = directory.path() / "settings.conf";
};

class QZLDefaultsManagerBadValues : public QZLDefaultsManagerFile, public testing::WithParamInterface<Value> {};

TEST_P(QZLDefaultsManagerBadValues, ReadAlikeBehindEveryKey) {
    std::string contents = "[General]\n";
    for (const char* key : {"Colors", "Brightness", "Speed", "Zoom", "MultiScreen", "ScreenshotInterval", "Diagnostics",
                            "SavedErrorCode", "SavedErrorSubCode"}) {
        contents += std::string(key) + "=" + GetParam().text + "\n";
    }
    read(contents);
    EXPECT_EQ(manager.colors(), GetParam().number);
    EXPECT_EQ(manager.brightness(), GetParam().number);
    EXPECT_EQ(manager.speed(), GetParam().number);
    EXPECT_EQ(manager.zoom(), GetParam().number);
    EXPECT_EQ(manager.multiScreen(), GetParam().number != 0.0F);
    EXPECT_EQ(manager.diagnostics(), GetParam().number != 0.0F);
    EXPECT_EQ(manager.screenshotInterval(), GetParam().integer);
    EXPECT_EQ(manager.savedErrorCode(), GetParam().integer);
    EXPECT_EQ(manager.savedErrorSubCode(), GetParam().integer);
    EXPECT_FALSE(manager.haveSavedError());
    EXPECT_TRUE(manager.synchronize());
    EXPECT_EQ(fake::readFile(file), contents) << "reading writes nothing";
}

INSTANTIATE_TEST_SUITE_P(
    Of, QZLDefaultsManagerBadValues,
    testing::Values(Value{"NotANumber", "nan", 0.0F, 0}, Value{"NegativeNotANumber", "-NaN", 0.0F, 0},
                    Value{"Infinity", "inf", 0.0F, 0}, Value{"NegativeInfinity", "-infinity", 0.0F, 0},
                    Value{"DecimalComma", "0,5", 0.0F, 0}, Value{"QuotedDecimalComma", "\"0,5\"", 0.0F, 0},
                    Value{"LargeFloat", "1e39", largestFloat, largest},
                    Value{"LargerThanDouble", "1e999", largestFloat, largest},
                    Value{"NegativeLargerThanDouble", "-1e999", -largestFloat, smallest},
                    Value{"DigitsWithoutEnd", std::string(5000, '9'), largestFloat, largest},
                    Value{"OneMoreThanTheLargestInteger", "9223372036854775808", 9223372036854775808.0F, largest},
                    Value{"SmallerThanFloat", "1e-400", 0.0F, 0}, Value{"Nothing", "", 0.0F, 0},
                    Value{"Word", "fast", 0.0F, 0}, Value{"True", "true", 1.0F, 1}, Value{"False", "false", 0.0F, 0},
                    Value{"Hexadecimal", "0x10", 0.0F, 0}, Value{"Fraction", "2.9", 2.9F, 2},
                    Value{"NegativeFraction", "-2.9", -2.9F, -2}, Value{"NumberAndWord", "2 days", 2.0F, 2},
                    Value{"List", "1, 2, 3", 1.0F, 1}, Value{"NestedValue", "@Variant(\\0\\0\\0\\x6)", 0.0F, 0},
                    Value{"InvalidValue", "@Invalid()", 0.0F, 0}, Value{"ByteArray", "@ByteArray(0.5)", 0.5F, 0},
                    Value{"Rectangle", "@Rect(1 2 3 4)", 0.0F, 0}),
    [](const auto& value) { return std::string(value.param.name); });

TEST_F(QZLDefaultsManagerFile, OfTheWrongFormReadsAsTheDefaults) {
    for (const std::string& contents :
         {std::string(), std::string("\n\n\n"), std::string(10000, '\0'), std::string(10000, '\xFF'),
          std::string("{\"Speed\": 1}"), std::string("<plist><key>Speed</key><real>1</real></plist>"),
          std::string("[Other]\nSpeed=1\n"), std::string("Speed 1\n")}) {
        read(contents);
        EXPECT_EQ(manager.speed(), 0.7F) << contents.substr(0, 40);
        EXPECT_TRUE(manager.multiScreen());
        EXPECT_EQ(manager.screenshotInterval(), 0);
        EXPECT_EQ(fake::readFile(file), contents);
    }
}

TEST_F(QZLDefaultsManagerFile, CutAnywhereReadsWhatIsWholeAndIsNeverMadeWorse) {
    const std::string whole = "[General]\nSpeed=0.25\nZoom=0.75\n";
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        std::filesystem::remove(file.string() + ".damaged");
        const std::string cut = whole.substr(0, size);
        read(cut);
        const float speed = manager.speed();
        manager.setColors(0.5F);
        ASSERT_TRUE(manager.synchronize());
        EXPECT_EQ(manager.colors(), 0.5F);
        EXPECT_EQ(manager.speed(), speed) << "cut to " << size;
        const bool keptAside = fake::readFile(file.string() + ".damaged") == cut;
        const bool stillThere = fake::readFile(file).find("Speed=0.25") != std::string::npos;
        EXPECT_TRUE(keptAside || stillThere || size < 20) << "cut to " << size;
    }
}

TEST_F(QZLDefaultsManagerFile, ThatCannotBeWrittenKeepsTheSettingsForThisRun) {
    std::filesystem::create_directory(file);
    platform::setPreferencesStore(platform::makeFilePreferencesStore(file));
    manager.registerDefaults();
    manager.setSpeed(0.25F);
    EXPECT_FALSE(manager.synchronize());
    EXPECT_EQ(manager.speed(), 0.25F);
    manager.saveError(105, 1003, "journal");
    EXPECT_TRUE(manager.haveSavedError());
    manager.reset();
    EXPECT_EQ(manager.speed(), 0.7F);
    EXPECT_FALSE(manager.haveSavedError());
}

}  // namespace
