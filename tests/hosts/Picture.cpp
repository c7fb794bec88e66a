#include "tests/hosts/Picture.hpp"

#include "tests/host/Process.hpp"

#include <png.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <string>
#include <utility>

namespace hosts {
namespace {

constexpr int tilesAcross = 8;
constexpr int tilesDown = 6;

double luminance(const Colour& colour) {
    return 0.299 * colour.red + 0.587 * colour.green + 0.114 * colour.blue;
}

int distance(const Colour& a, const Colour& b) {
    return std::abs(a.red - b.red) + std::abs(a.green - b.green) + std::abs(a.blue - b.blue);
}

bool isEmpty(Size size) {
    return size.width < tilesAcross || size.height < tilesDown;
}

/// True when it is of every tile that the picture is divided into.
template <typename Predicate>
bool everyTile(Size size, Predicate predicate) {
    if (isEmpty(size)) {
        return false;
    }
    for (int row = 0; row < tilesDown; ++row) {
        for (int column = 0; column < tilesAcross; ++column) {
            const Place tile{size.width * column / tilesAcross, size.height * row / tilesDown,
                             Size{size.width / tilesAcross, size.height / tilesDown}};
            if (!predicate(tile)) {
                return false;
            }
        }
    }
    return true;
}

std::string described(const Picture& picture) {
    std::ostringstream text;
    text << picture.size().width << "x" << picture.size().height << ", the brightness of its parts is\n";
    everyTile(picture.size(), [&](const Place& tile) {
        text << std::setw(4) << std::lround(picture.part(tile).brightness());
        text << (tile.x + 2 * tile.size.width > picture.size().width ? "\n" : "");
        return true;
    });
    return text.str();
}

bool isOfOneColour(const Picture& picture) {
    return picture.share(picture.at(0, 0)) == 1.0;
}

}  // namespace

Picture::Picture(Size size, std::vector<Colour> pixels) : _size(size), _pixels(std::move(pixels)) {}

Picture Picture::ofPng(const std::filesystem::path& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, file.c_str()) == 0) {
        return {};
    }
    image.format = PNG_FORMAT_RGB;
    std::vector<Colour> pixels(static_cast<std::size_t>(image.width) * image.height);
    static_assert(sizeof(Colour) == 3);
    if (png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) == 0) {
        return {};
    }
    return {Size{static_cast<int>(image.width), static_cast<int>(image.height)}, std::move(pixels)};
}

Picture Picture::part(const Place& place) const {
    std::vector<Colour> pixels;
    for (int y = 0; y < place.size.height; ++y) {
        const Colour* row = &at(place.x, place.y + y);
        pixels.insert(pixels.end(), row, row + place.size.width);
    }
    return {place.size, std::move(pixels)};
}

double Picture::brightness() const {
    double sum = 0.0;
    for (const Colour& pixel : _pixels) {
        sum += pixel.red + pixel.green + pixel.blue;
    }
    return isEmpty() ? 0.0 : sum / (3.0 * static_cast<double>(_pixels.size()));
}

double Picture::share(const Colour& colour) const {
    const auto count = std::count(_pixels.begin(), _pixels.end(), colour);
    return isEmpty() ? 0.0 : static_cast<double>(count) / static_cast<double>(_pixels.size());
}

double Picture::sharpness() const {
    double bends = 0.0;
    double slopes = 0.0;
    for (int y = 0; y < _size.height; ++y) {
        for (int x = 1; x + 1 < _size.width; ++x) {
            const double left = luminance(at(x - 1, y));
            const double right = luminance(at(x + 1, y));
            bends += std::abs(left + right - 2.0 * luminance(at(x, y)));
            slopes += std::abs(left - right);
        }
    }
    return slopes > 0.0 ? bends / slopes : 0.0;
}

double difference(const Picture& a, const Picture& b) {
    if (a.size() != b.size() || a.isEmpty()) {
        return 255.0;
    }
    double sum = 0.0;
    for (int y = 0; y < a.size().height; ++y) {
        for (int x = 0; x < a.size().width; ++x) {
            sum += distance(a.at(x, y), b.at(x, y));
        }
    }
    return sum / (3.0 * a.size().width * a.size().height);
}

Place changedPlace(const Picture& before, const Picture& after) {
    if (before.size() != after.size()) {
        return {0, 0, after.size()};
    }
    int left = after.size().width;
    int top = after.size().height;
    int right = 0;
    int bottom = 0;
    for (int y = 0; y < after.size().height; ++y) {
        for (int x = 0; x < after.size().width; ++x) {
            if (!(before.at(x, y) == after.at(x, y))) {
                left = std::min(left, x);
                top = std::min(top, y);
                right = std::max(right, x + 1);
                bottom = std::max(bottom, y + 1);
            }
        }
    }
    return right == 0 ? Place{} : Place{left, top, Size{right - left, bottom - top}};
}

bool isFilledWithClouds(const Picture& picture) {
    constexpr double darkest = 6.0;
    return everyTile(picture.size(), [&](const Place& tile) {
        const Picture part = picture.part(tile);
        return part.brightness() > darkest && !isOfOneColour(part);
    });
}

bool movesEverywhere(const Picture& before, const Picture& after) {
    return before.size() == after.size() &&
           everyTile(after.size(), [&](const Place& tile) { return before.part(tile) != after.part(tile); });
}

testing::AssertionResult showsMovingClouds(const TakePicture& take, Size size) {
    Picture first;
    const bool appeared = fake::eventually([&] {
        first = take();
        return first.size() == size && isFilledWithClouds(first);
    });
    if (!appeared) {
        return testing::AssertionFailure() << "no clouds of " << size.width << "x" << size.height
                                           << " appeared; this is seen: " << described(first);
    }
    Picture last;
    const bool moved = fake::eventually([&] {
        last = take();
        return movesEverywhere(first, last);
    });
    if (!moved) {
        return testing::AssertionFailure() << "the clouds do not move everywhere; they were first " << described(first)
                                           << "and last " << described(last);
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult becomesSharp(const TakePicture& take) {
    // Measured: 0.60 to 0.87 for clouds drawn at that size, 0.30 to 0.46 for those of 320x240 and 480x360 stretched to
    // it.
    constexpr double leastSharpness = 0.53;
    double sharpness = 0.0;
    const bool isSharp = fake::eventually([&] {
        const Picture picture = take();
        sharpness = picture.size() == judgedSize ? picture.sharpness() : 0.0;
        return sharpness > leastSharpness;
    });
    return isSharp ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << "the picture's sharpness is " << sharpness;
}

testing::AssertionResult standsStill(const TakePicture& take) {
    Picture last = take();
    auto since = std::chrono::steady_clock::now();
    const bool stood = fake::eventually([&] {
        Picture now = take();
        if (now != last) {
            last = std::move(now);
            since = std::chrono::steady_clock::now();
        }
        return std::chrono::steady_clock::now() - since > std::chrono::milliseconds(500);
    });
    return stood ? testing::AssertionSuccess() : testing::AssertionFailure() << "the picture keeps changing";
}

}  // namespace hosts
