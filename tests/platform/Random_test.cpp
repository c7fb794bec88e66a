#include "platform/Random.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace {

class CountingGenerator final : public platform::RandomGenerator {
public:
    void seed(std::uint32_t seed) override { _next = seed; }
    std::int64_t next() override { return _next++; }

private:
    std::int64_t _next = 0;
};

std::vector<std::int64_t> draw(int count) {
    std::vector<std::int64_t> numbers;
    for (int i = 0; i < count; ++i) {
        numbers.push_back(platform::random());
    }
    return numbers;
}

TEST(Random, GivesTheCLibrarysSequenceOfTheSeed) {
    srandom(4711);
    std::vector<std::int64_t> expected;
    for (int i = 0; i < 100; ++i) {
        expected.push_back(::random());
    }

    platform::seedRandom(4711);
    EXPECT_EQ(draw(100), expected);
}

TEST(Random, EqualSeedsGiveEqualNumbersAndOtherSeedsOthers) {
    platform::seedRandom(1);
    const auto ofOne = draw(10);
    platform::seedRandom(2);
    const auto ofTwo = draw(10);
    platform::seedRandom(1);

    EXPECT_EQ(draw(10), ofOne);
    EXPECT_NE(ofOne, ofTwo);
}

TEST(Random, NumbersLieBetween0And2147483647) {
    platform::seedRandom(0xFFFFFFFF);
    for (const std::int64_t number : draw(10000)) {
        ASSERT_GE(number, 0);
        ASSERT_LE(number, 2147483647);
    }
}

TEST(Random, AnotherGeneratorIsInForceUntilTheCLibrarysIsRestored) {
    CountingGenerator generator;
    platform::setRandomGenerator(&generator);
    platform::seedRandom(7);
    EXPECT_EQ(draw(3), (std::vector<std::int64_t>{7, 8, 9}));
    platform::setRandomGenerator(nullptr);

    platform::seedRandom(7);
    EXPECT_NE(draw(3), (std::vector<std::int64_t>{7, 8, 9}));
}

}  // namespace
