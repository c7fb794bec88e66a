#include "platform/PreferencesStore.hpp"

#include "tests/platform/LocaleForTests.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <thread>

namespace {

using platform::PreferencesStore;
using Keys = std::vector<std::string>;

constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr float largestFloat = std::numeric_limits<float>::max();

std::uint32_t bits(float value) {
    std::uint32_t result = 0;
    std::memcpy(&result, &value, sizeof(result));
    return result;
}

/// What every store does, whether it keeps its values in memory or in a file.
class AnyPreferencesStore : public testing::TestWithParam<bool> {
protected:
    AnyPreferencesStore()
        : store(GetParam() ? platform::makeFilePreferencesStore(_directory.path() / "store.conf")
                           : platform::makeMemoryPreferencesStore()) {}

    float floatOf(const std::string& text) {
        store->setString(text, "key");
        return store->floatForKey("key");
    }
    std::int64_t integerOf(const std::string& text) {
        store->setString(text, "key");
        return store->integerForKey("key");
    }

private:
    fake::TemporaryDirectory _directory;

protected:
    std::shared_ptr<PreferencesStore> store;
};

INSTANTIATE_TEST_SUITE_P(, AnyPreferencesStore, testing::Bool(),
                         [](const auto& store) { return store.param ? "InAFile" : "InMemory"; });

TEST_P(AnyPreferencesStore, AnAbsentKeyReadsAsZeroOrNone) {
    EXPECT_EQ(store->floatForKey("absent"), 0.0F);
    EXPECT_EQ(store->integerForKey("absent"), 0);
    EXPECT_EQ(store->stringForKey("absent"), std::nullopt);
    EXPECT_FALSE(store->isStored("absent"));
    EXPECT_EQ(store->allKeys(), Keys{});
}

TEST_P(AnyPreferencesStore, ARegisteredDefaultIsReadOnlyWhileTheKeyIsNotStored) {
    store->registerDefaults({{"Speed", 0.7F}});
    EXPECT_EQ(store->floatForKey("Speed"), 0.7F);
    EXPECT_FALSE(store->isStored("Speed"));
    store->setFloat(0.0F, "Speed");
    EXPECT_EQ(store->floatForKey("Speed"), 0.0F);
    EXPECT_TRUE(store->isStored("Speed"));
    store->removeObjectForKey("Speed");
    EXPECT_EQ(store->floatForKey("Speed"), 0.7F);
    EXPECT_FALSE(store->isStored("Speed"));
}

TEST_P(AnyPreferencesStore, AStoredTextThatIsNoNumberHidesTheDefault) {
    store->registerDefaults({{"Speed", 0.7F}});
    store->setString("fast", "Speed");
    EXPECT_EQ(store->floatForKey("Speed"), 0.0F);
}

TEST_P(AnyPreferencesStore, DefaultsOfEveryTypeAreReadAsEveryType) {
    store->registerDefaults(
        {{"on", true}, {"off", false}, {"count", std::int64_t{-42}}, {"part", 2.5F}, {"text", std::string("7 days")}});
    EXPECT_EQ(store->floatForKey("on"), 1.0F);
    EXPECT_EQ(store->integerForKey("on"), 1);
    EXPECT_EQ(store->stringForKey("on"), "1");
    EXPECT_EQ(store->floatForKey("off"), 0.0F);
    EXPECT_EQ(store->integerForKey("off"), 0);
    EXPECT_EQ(store->floatForKey("count"), -42.0F);
    EXPECT_EQ(store->stringForKey("count"), "-42");
    EXPECT_EQ(store->integerForKey("part"), 2);
    EXPECT_EQ(store->stringForKey("part"), "2.5");
    EXPECT_EQ(store->integerForKey("text"), 7);
    EXPECT_EQ(store->stringForKey("text"), "7 days");
}

TEST_P(AnyPreferencesStore, ALaterRegistrationAddsToTheEarlier) {
    store->registerDefaults({{"a", 1.0F}, {"b", 1.0F}});
    store->registerDefaults({{"b", 2.0F}});
    EXPECT_EQ(store->floatForKey("a"), 1.0F);
    EXPECT_EQ(store->floatForKey("b"), 2.0F);
}

TEST_P(AnyPreferencesStore, AllKeysAreTheStoredAndTheRegisteredEachOnce) {
    store->registerDefaults({{"Colors", 0.4F}, {"Zoom", 0.38F}});
    store->setFloat(1.0F, "Zoom");
    store->setString("1.0", "SavedErrorVersion");
    Keys keys = store->allKeys();
    std::sort(keys.begin(), keys.end());
    EXPECT_EQ(keys, (Keys{"Colors", "SavedErrorVersion", "Zoom"}));
}

TEST_P(AnyPreferencesStore, RemovingEveryKeyLeavesTheDefaults) {
    store->registerDefaults({{"Colors", 0.4F}});
    store->setFloat(0.9F, "Colors");
    store->setInteger(301, "SavedErrorCode");
    for (const std::string& key : store->allKeys()) {
        store->removeObjectForKey(key);
    }
    EXPECT_TRUE(store->synchronize());
    EXPECT_EQ(store->floatForKey("Colors"), 0.4F);
    EXPECT_EQ(store->allKeys(), Keys{"Colors"});
}

TEST_P(AnyPreferencesStore, AStoredNumberReadsAsItsText) {
    store->setFloat(0.4F, "float");
    store->setFloat(1.0F, "one");
    store->setInteger(-7, "integer");
    EXPECT_EQ(store->stringForKey("float"), "0.4");
    EXPECT_EQ(store->stringForKey("one"), "1");
    EXPECT_EQ(store->stringForKey("integer"), "-7");
}

TEST_P(AnyPreferencesStore, FloatsRoundTripExactly) {
    std::mt19937 generator(1);
    for (int i = 0; i < 200; ++i) {
        float value = 0;
        do {
            const std::uint32_t pattern = generator();
            std::memcpy(&value, &pattern, sizeof(value));
        } while (!std::isfinite(value));
        store->setFloat(value, "random" + std::to_string(i));
        ASSERT_EQ(bits(store->floatForKey("random" + std::to_string(i))), bits(value));
    }
    int number = 0;
    for (const float value :
         {0.4F, 0.38F, 1.0F / 3.0F, -0.0F, largestFloat, -largestFloat, 1.17549435e-38F, 1e-45F, 16777217.0F}) {
        const std::string key = "value" + std::to_string(number++);
        store->setFloat(value, key);
        ASSERT_TRUE(store->synchronize());
        EXPECT_EQ(bits(store->floatForKey(key)), bits(value));
    }
}

TEST_P(AnyPreferencesStore, WhatIsNoNumberReadsAsZero) {
    store->setFloat(std::numeric_limits<float>::quiet_NaN(), "nan");
    store->setFloat(std::numeric_limits<float>::infinity(), "infinity");
    EXPECT_EQ(store->floatForKey("nan"), 0.0F);
    EXPECT_EQ(store->floatForKey("infinity"), 0.0F);
    for (const char* text : {"", " ", "abc", "x1", "nan", "inf", "-inf", "infinity", "NaN", "-", "+", ".", "e5", "--1",
                             "yes", "truely", "false"}) {
        EXPECT_EQ(floatOf(text), 0.0F) << text;
        EXPECT_EQ(integerOf(text), 0) << text;
    }
}

TEST_P(AnyPreferencesStore, ATextIsReadByTheNumberItStartsWith) {
    EXPECT_EQ(floatOf("0,5"), 0.0F);
    EXPECT_EQ(floatOf("1e3x"), 1000.0F);
    EXPECT_EQ(floatOf("  2.5 apples"), 2.5F);
    EXPECT_EQ(floatOf("\t+1.5"), 1.5F);
    EXPECT_EQ(floatOf("-.25"), -0.25F);
    EXPECT_EQ(floatOf("3."), 3.0F);
    EXPECT_EQ(floatOf("1e"), 1.0F);
    EXPECT_EQ(floatOf("1.5.2"), 1.5F);
    EXPECT_EQ(floatOf("0x10"), 0.0F);
    EXPECT_EQ(floatOf("true"), 1.0F);
    EXPECT_EQ(integerOf("12 days"), 12);
    EXPECT_EQ(integerOf("1-2"), 1);
    EXPECT_EQ(integerOf("0x10"), 0);
    EXPECT_EQ(integerOf("1e3x"), 1000);
    EXPECT_EQ(integerOf(" true "), 1);
}

TEST_P(AnyPreferencesStore, AnIntegerIsReadWithoutItsFraction) {
    EXPECT_EQ(integerOf("2.9"), 2);
    EXPECT_EQ(integerOf("-2.9"), -2);
    store->setFloat(0.99F, "key");
    EXPECT_EQ(store->integerForKey("key"), 0);
}

TEST_P(AnyPreferencesStore, IntegersAreExactToTheirLimitsAndSaturateBeyond) {
    for (const std::int64_t value :
         {smallest, smallest + 1, std::int64_t{-1}, std::int64_t{9007199254740993}, largest}) {
        store->setInteger(value, "key");
        EXPECT_EQ(store->integerForKey("key"), value);
    }
    EXPECT_EQ(integerOf("9223372036854775808"), largest);
    EXPECT_EQ(integerOf("-9223372036854775809"), smallest);
    EXPECT_EQ(integerOf("99999999999999999999999999.5"), largest);
    EXPECT_EQ(integerOf("-1e300"), smallest);
    EXPECT_EQ(integerOf("1e999"), largest);
}

TEST_P(AnyPreferencesStore, AFloatTooLargeReadsAsTheLargestAndOneTooSmallAsZero) {
    EXPECT_EQ(floatOf("1e39"), largestFloat);
    EXPECT_EQ(floatOf("-1e999"), -largestFloat);
    EXPECT_EQ(floatOf("1" + std::string(400, '0')), largestFloat);
    EXPECT_EQ(floatOf("1e-60"), 0.0F);
}

TEST_P(AnyPreferencesStore, NumbersDoNotDependOnTheLocale) {
    const auto german = LocaleForTests::german();
    if (german == nullptr) {
        GTEST_SKIP() << "localedef cannot make a German locale here";
    }
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    store->setFloat(0.5F, "key");
    EXPECT_EQ(store->stringForKey("key"), "0.5");
    EXPECT_EQ(store->floatForKey("key"), 0.5F);
    EXPECT_EQ(floatOf("2.5"), 2.5F);
    EXPECT_EQ(floatOf("0,5"), 0.0F);
    EXPECT_EQ(integerOf("2.5"), 2);
}

TEST_P(AnyPreferencesStore, ManyThreadsMayUseItAtOnce) {
    store->registerDefaults({{"registered", true}});
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this, key = "key" + std::to_string(i)] {
            for (int round = 1; round <= 20; ++round) {
                store->setInteger(round, key);
                EXPECT_EQ(store->integerForKey(key), round);
                EXPECT_EQ(store->integerForKey("registered"), 1);
                EXPECT_GE(store->allKeys().size(), 2U);
                EXPECT_TRUE(store->isStored(key));
            }
            EXPECT_TRUE(store->synchronize());
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(store->allKeys().size(), 5U);
}

}  // namespace
