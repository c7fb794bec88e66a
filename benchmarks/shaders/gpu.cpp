// The time that each pass takes on the device, by the device's own clock, beside the memory traffic that it cannot do
// without: that traffic at the speed of a plain copy, measured in the same run, is the bound.
// Usage: gpu_benchmark LIBRARY [ROUNDS]
#include "benchmarks/Statistics.hpp"
#include "benchmarks/frameloop/BareRenderer.hpp"
#include "benchmarks/frameloop/ChosenDevice.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

namespace {

/// Frames a round; the first ones bring the clocks up and are not counted.
constexpr std::uint64_t framesPerRound = 40;
constexpr std::uint64_t warmUp = 10;

/// More than any device's caches hold.
constexpr std::size_t copiedBytes = std::size_t{256} << 20U;
constexpr int copies = 8;

// Bytes a texel of `BarePipelines`' formats and of the noise.
constexpr double colorBytes = 4.0;
constexpr double heightBytes = 2.0;
constexpr double pictureBytes = 4.0;
constexpr double noiseBytes = 1.0;

double pixels(bench::Size size) {
    return static_cast<double>(size.width) * size.height;
}

/// A pass at one size: what it took in each round, and the bytes that it at least reads and writes.
struct Pass {
    const char* name;
    double bytes;
    std::vector<double> milliseconds{};
};

/// The noise is read once, the two intermediate images are written.
double colorPassBytes(bench::Size intermediate) {
    constexpr double noise = noiseBytes * bench::BareSky::noiseSide * bench::BareSky::noiseSide;
    return noise + pixels(intermediate) * (colorBytes + heightBytes);
}

/// Each texel of the intermediate images is read once, the picture is written.
double lightPassBytes(bench::Size intermediate, bench::Size picture) {
    return pixels(intermediate) * (colorBytes + heightBytes) + pixels(picture) * pictureBytes;
}

/// Bytes read and written per millisecond by copies from one buffer of the device's memory to another.
double copySpeed(const bench::BareDevice& device) {
    const auto from = device.makeDeviceBuffer(
        copiedBytes, vk::BufferUsageFlagBits::eTransferSrc | vk::BufferUsageFlagBits::eTransferDst);
    const auto to = device.makeDeviceBuffer(copiedBytes, vk::BufferUsageFlagBits::eTransferDst);
    const bench::BareTimer timer(device, copies + 1);
    device.runAndWait([&](const vk::raii::CommandBuffer& commands) {
        commands.fillBuffer(*from.buffer, 0, copiedBytes, 0x5A5A5A5A);
        commands.fillBuffer(*to.buffer, 0, copiedBytes, 0);
        timer.reset(commands, 0, copies + 1);
        timer.mark(commands, 0);
        for (std::uint32_t copy = 1; copy <= copies; ++copy) {
            commands.copyBuffer(*from.buffer, *to.buffer, vk::BufferCopy{.size = copiedBytes});
            timer.mark(commands, copy);
        }
    });
    std::vector<double> milliseconds;
    for (std::uint32_t copy = 0; copy < copies; ++copy) {
        milliseconds.push_back(timer.millisecondsAfter(copy));
    }
    return 2.0 * copiedBytes / bench::median(std::move(milliseconds));
}

/// Both passes of many frames at one size; a value a round.
class Drawing {
public:
    Drawing(const bench::BareDevice& device, const std::string& library, bench::Size size)
        : _timer(device, bench::slots * bench::BareRenderer::marksPerFrame),
          _picture(device.makeImage(bench::BarePipelines::pictureFormat, size,
                                    vk::ImageUsageFlagBits::eColorAttachment | vk::ImageUsageFlagBits::eTransferSrc)),
          _renderer(device, library, size),
          _sky(_renderer.makeSky()),
          _color{"colour", colorPassBytes(_renderer.intermediate())},
          _light{"light", lightPassBytes(_renderer.intermediate(), size)} {
        _renderer.setTimer(&_timer);
    }

    void run() {
        std::vector<double> color;
        std::vector<double> light;
        const std::uint64_t before = _renderer.submitted();
        for (std::uint64_t frame = before; frame < before + framesPerRound + bench::slots; ++frame) {
            if (frame >= before + bench::slots) {  // the slot's last frame tells its times before the next one
                const std::uint64_t last = frame - bench::slots;
                _renderer.waitFor(last + 1);
                const std::uint32_t mark = bench::BareRenderer::firstMark(last);
                if (last >= before + warmUp) {
                    color.push_back(_timer.millisecondsAfter(mark));
                    light.push_back(_timer.millisecondsAfter(mark + 1));
                }
            }
            if (frame < before + framesPerRound) {
                _renderer.draw(_sky.next(), {*_picture.image, *_picture.view, bench::copySource});
            }
        }
        _color.milliseconds.push_back(bench::median(std::move(color)));
        _light.milliseconds.push_back(bench::median(std::move(light)));
    }

    const Pass& color() const { return _color; }
    const Pass& light() const { return _light; }

private:
    bench::BareTimer _timer;
    bench::BareImage _picture;
    bench::BareRenderer _renderer;
    bench::BareSky _sky;
    Pass _color;
    Pass _light;
};

void print(bench::Size size, const Pass& pass, double bytesPerMillisecond) {
    const double milliseconds = bench::median(pass.milliseconds);
    const double bound = pass.bytes / bytesPerMillisecond;
    std::printf("| %ux%u | %s | %.4f | %.2f | %.4f | %.2f |\n", size.width, size.height, pass.name, milliseconds,
                pass.bytes / 1e6, bound, milliseconds / bound);
}

int measure(const std::string& library, int rounds) {
    const std::string deviceName = bench::chosenDeviceName();
    const bench::BareDevice device(deviceName, bench::BareUseOfWindows::None);
    const double bytesPerMillisecond = copySpeed(device);
    std::printf("Device: %s; medians of %d rounds of %llu frames; a copy reads and writes %.1f GB/s\n\n",
                deviceName.c_str(), rounds, static_cast<unsigned long long>(framesPerRound - warmUp),
                bytesPerMillisecond / 1e6);
    std::printf(
        "| size | pass | ms | MB moved at least | ms at the copy's speed | ratio |\n|---|---|---|---|---|---|\n");
    for (const bench::Size size : {bench::Size{1920, 1080}, bench::Size{3840, 2160}, bench::Size{7680, 4320}}) {
        Drawing drawing(device, library, size);
        for (int round = 0; round < rounds; ++round) {
            drawing.run();
        }
        print(size, drawing.color(), bytesPerMillisecond);
        print(size, drawing.light(), bytesPerMillisecond);
        std::fflush(stdout);
    }
    std::printf("\nGoal on a GPU: each ratio at most 1.50.\n");
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 2) {
        std::fprintf(stderr, "usage: gpu_benchmark LIBRARY [ROUNDS]\n");
        return 2;
    }
    try {
        return measure(arguments[1], argumentCount > 2 ? std::max(1, std::atoi(arguments[2])) : 3);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "gpu_benchmark: %s\n", error.what());
        return 1;
    }
}
