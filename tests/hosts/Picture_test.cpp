#include "tests/hosts/Picture.hpp"

#include <cmath>
#include <functional>

// What the tests under real hosts see with must itself see well.
namespace hosts {
namespace {

Picture drawn(Size size, const std::function<Colour(int, int)>& colourAt) {
    std::vector<Colour> pixels;
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            pixels.push_back(colourAt(x, y));
        }
    }
    return {size, std::move(pixels)};
}

Colour grey(double level) {
    const auto component = static_cast<std::uint8_t>(std::lround(level));
    return {component, component, component};
}

/// Waves of a few pixels' length, farther along the later it is.
Picture waves(Size size, int time = 0) {
    return drawn(size, [time](int x, int y) { return grey(128.0 + 100.0 * std::sin(0.9 * (x + time) + 0.2 * y)); });
}

/// The picture, drawn twice as large, with the pixels between mixed of their neighbours.
Picture stretched(const Picture& picture) {
    const Size size{2 * picture.size().width - 1, 2 * picture.size().height - 1};
    return drawn(size, [&](int x, int y) {
        const int left = picture.at(x / 2, y / 2).red;
        const int right = picture.at((x + 1) / 2, (y + 1) / 2).red;
        return grey((left + right) / 2.0);
    });
}

TEST(Picture, OfWavesIsFilled) {
    EXPECT_TRUE(isFilledWithClouds(waves({64, 48})));
}

TEST(Picture, WithABlackQuarterIsNotFilled) {
    const Picture whole = waves({64, 48});
    EXPECT_FALSE(isFilledWithClouds(
        drawn({64, 48}, [&](int x, int y) { return x < 32 && y < 24 ? Colour{} : whole.at(x, y); })));
}

TEST(Picture, ThatFillsAQuarterOnlyIsNotFilled) {
    const Picture whole = waves({64, 48});
    const Colour background{32, 64, 96};
    EXPECT_FALSE(isFilledWithClouds(
        drawn({64, 48}, [&](int x, int y) { return x < 32 && y < 24 ? whole.at(x, y) : background; })));
}

TEST(Picture, ThatIsMissingIsNotFilled) {
    EXPECT_FALSE(isFilledWithClouds(Picture()));
    EXPECT_TRUE(Picture::ofPng("/nonexistent.png").isEmpty());
}

TEST(Picture, MovesEverywhereOnlyWhereEveryPartDoes) {
    const Picture before = waves({64, 48});
    const Picture after = waves({64, 48}, 1);
    EXPECT_TRUE(movesEverywhere(before, after));
    EXPECT_FALSE(movesEverywhere(before, before));
    EXPECT_FALSE(
        movesEverywhere(before, drawn({64, 48}, [&](int x, int y) { return (x < 32 ? before : after).at(x, y); })));
    EXPECT_FALSE(movesEverywhere(waves({32, 24}), after));
}

TEST(Picture, IsLessSharpWhenItWasStretched) {
    const Picture picture = waves({64, 48});
    EXPECT_LT(stretched(picture).sharpness(), 0.7 * picture.sharpness());
}

TEST(Picture, TellsWhereItHasChanged) {
    const Picture before = drawn({64, 48}, [](int, int) { return Colour{}; });
    const Picture after = drawn({64, 48}, [](int x, int y) {
        return x >= 10 && x < 30 && y >= 5 && y < 20 ? Colour{200, 0, 0} : Colour{};
    });
    EXPECT_EQ(changedPlace(before, after), (Place{10, 5, Size{20, 15}}));
    EXPECT_EQ(changedPlace(before, before), Place{});
    EXPECT_EQ(after.part({10, 5, Size{20, 15}}).share({200, 0, 0}), 1.0);
}

TEST(Picture, DiffersByTheMeanOfItsComponents) {
    const Picture black = drawn({16, 12}, [](int, int) { return Colour{}; });
    const Picture red = drawn({16, 12}, [](int, int) { return Colour{90, 0, 0}; });
    EXPECT_DOUBLE_EQ(difference(black, red), 30.0);
    EXPECT_DOUBLE_EQ(red.brightness(), 30.0);
    EXPECT_DOUBLE_EQ(difference(black, Picture()), 255.0);
}

}  // namespace
}  // namespace hosts
