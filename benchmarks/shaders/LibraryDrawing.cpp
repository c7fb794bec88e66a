#include "benchmarks/shaders/LibraryDrawing.hpp"

#include "benchmarks/Statistics.hpp"

#include <chrono>
#include <ctime>

namespace bench {
namespace {

using std::chrono::steady_clock;

double processCpuMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

}  // namespace

LibraryDrawing::LibraryDrawing(const BareDevice& device, const std::filesystem::path& library, Size size)
    : _renderer(device, library, size), _sky(_renderer.makeSky()) {
    for (BareImage& picture : _pictures) {
        picture = device.makeImage(BarePipelines::pictureFormat, size,
                                   vk::ImageUsageFlagBits::eColorAttachment | vk::ImageUsageFlagBits::eTransferSrc);
    }
    for (int frame = 0; frame < nominalRate; ++frame) {  // the fade is over
        static_cast<void>(_sky.next());
    }
    draw(2 * slots, BarePasses::Both);  // the light pass alone has something to shade
}

FrameTimes LibraryDrawing::draw(std::size_t frames, BarePasses passes) {
    const std::uint64_t before = _renderer.submitted();
    const double cpuBefore = processCpuMilliseconds();
    std::vector<double> intervals;
    steady_clock::time_point last;
    for (std::size_t frame = 0; frame < slots && frame < frames; ++frame) {
        drawNext(passes);
    }
    for (std::size_t completed = 1; completed <= frames; ++completed) {
        _renderer.waitFor(before + completed);
        const auto now = steady_clock::now();
        if (completed > 1) {
            intervals.push_back(std::chrono::duration<double, std::milli>(now - last).count());
        }
        last = now;
        if (completed + slots <= frames) {
            drawNext(passes);
        }
    }
    return {median(std::move(intervals)), (processCpuMilliseconds() - cpuBefore) / static_cast<double>(frames)};
}

void LibraryDrawing::drawNext(BarePasses passes) {
    const BareImage& picture = _pictures[_renderer.submitted() % slots];
    _renderer.draw(_sky.next(), {*picture.image, *picture.view, copySource}, passes);
}

}  // namespace bench
