#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include <gtest/gtest.h>

namespace hosts {

struct Size {
    int width = 0;
    int height = 0;
    bool operator==(const Size&) const = default;
};

struct Place {
    int x = 0;
    int y = 0;
    Size size;
    bool operator==(const Place&) const = default;
};

struct Colour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    bool operator==(const Colour&) const = default;
};

/// What somebody saw: a screen, a part of it or a window. Empty where nothing could be seen.
class Picture {
public:
    Picture() = default;
    /// Row by row from the top.
    Picture(Size size, std::vector<Colour> pixels);
    /// Empty when the file is no picture.
    static Picture ofPng(const std::filesystem::path& file);

    const Size& size() const { return _size; }
    bool isEmpty() const { return _pixels.empty(); }
    const Colour& at(int x, int y) const { return _pixels[static_cast<std::size_t>(y) * _size.width + x]; }
    Picture part(const Place& place) const;

    /// The mean of all colours' components, 0 to 255.
    double brightness() const;
    /// The share of the pixels that have exactly this colour.
    double share(const Colour& colour) const;
    /// How much of the change from pixel to pixel is fine detail. A picture that was stretched has next to none.
    double sharpness() const;

    bool operator==(const Picture&) const = default;

private:
    Size _size;
    std::vector<Colour> _pixels;
};

/// The mean difference of all colours' components, 0 to 255; the greatest when the sizes differ.
double difference(const Picture& a, const Picture& b);
/// The smallest place that holds all that differs.
Place changedPlace(const Picture& before, const Picture& after);

/// Clouds everywhere: no part of the picture is dark or of one colour.
bool isFilledWithClouds(const Picture& picture);
/// Part for part, the picture has changed.
bool movesEverywhere(const Picture& before, const Picture& after);

using TakePicture = std::function<Picture()>;

/// Looks until clouds of that size are seen, and then until they have moved everywhere.
testing::AssertionResult showsMovingClouds(const TakePicture& take, Size size);
/// The size at which `becomesSharp` can judge clouds.
inline constexpr Size judgedSize{800, 600};
/// Looks until the picture is one of that size and no smaller one that was stretched to it.
testing::AssertionResult becomesSharp(const TakePicture& take);
/// Looks until pictures, two in succession and half a second apart, are the same.
testing::AssertionResult standsStill(const TakePicture& take);

}  // namespace hosts
