// What the framework's frame loop costs beside a loop written by hand for the same two passes, in one process, by
// turns.
//
// Usage: frame_loop_benchmark [--rounds N]
//        frame_loop_benchmark --device                           prints the name of the device that is measured
//        frame_loop_benchmark --loop framework WIDTHxHEIGHT FRAMES          one loop alone, for profilers and its start
//        frame_loop_benchmark --loop bare WIDTHxHEIGHT FRAMES DEVICE
//        frame_loop_benchmark --window bare WIDTHxHEIGHT DEVICE             the bare loop in an X11 window, until
//        killed
#include "benchmarks/Statistics.hpp"
#include "benchmarks/frameloop/Allocations.hpp"
#include "benchmarks/frameloop/BareLoop.hpp"
#include "benchmarks/frameloop/BareWindow.hpp"
#include "benchmarks/frameloop/ChosenDevice.hpp"
#include "benchmarks/frameloop/FrameworkLoop.hpp"
#include "host/ModuleLoader.hpp"
#include "platform/Clock.hpp"
#include "platform/PreferencesStore.hpp"
#include "platform/gpu/Backend.hpp"
#include "platform/gpu/vulkan/VulkanBackend.hpp"

#include <unistd.h>

#include <QtWidgets/QApplication>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

namespace fs = std::filesystem;

/// Frames before anything is counted: caches are warm, lists have grown, the fade is over.
constexpr std::size_t warmUp = 70;
/// A GPU may draw thousands a second, which the pace that CPU time is measured at does not reach.
constexpr std::size_t pacedFrames = 1000;

/// The real clocks, but for the time of day, which the clouds grow from.
class SeedClock final : public platform::Clock {
public:
    platform::TimebaseInfo timebase() const override { return platform::systemClock().timebase(); }
    std::uint64_t absoluteTicks() const override { return platform::systemClock().absoluteTicks(); }
    std::int64_t calendarSeconds() const override { return bench::calendarSeconds; }
    double secondsSinceReferenceDate() const override { return platform::systemClock().secondsSinceReferenceDate(); }
};

/// The frame times after the warm-up.
double medianCpu(const bench::Run& run) {
    return bench::median({run.cpuMicroseconds.begin() + warmUp, run.cpuMicroseconds.end()});
}

fs::path bundleDirectory() {
    return fs::read_symlink("/proc/self/exe").parent_path() / "Cirrane.saver";
}

fs::path shaderLibrary() {
    return bundleDirectory() / "default.metallib";
}

/// The saver's views are widgets, which need an application, but no display here.
void makeOffscreenApplication() {
    static char name[] = "frame_loop_benchmark";
    static char* arguments[] = {name, nullptr};
    static int count = 1;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const auto* const application = new QApplication(count, arguments);  // lives to the end of the process
    static_cast<void>(application);
}

const platform::SaverModule& prepareFramework() {
    makeOffscreenApplication();
    static const SeedClock clock;
    platform::setClock(&clock);
    platform::setPreferencesStore(platform::makeMemoryPreferencesStore());
    gpu::setBackend(gpu::vulkan::makeVulkanBackend({}));
    const auto module = host::loadSaverModule(bundleDirectory());
    if (const auto* reason = std::get_if<std::string>(&module)) {
        throw std::runtime_error(*reason);
    }
    return *std::get<const platform::SaverModule*>(module);
}

std::shared_ptr<gpu::Device> requireDevice() {
    auto device = gpu::createSystemDefaultDevice();
    if (device == nullptr) {
        throw std::runtime_error("no Vulkan device found");
    }
    return device;
}

/// How far two pictures are apart: the largest difference of a byte.
int difference(const std::vector<std::byte>& a, const std::vector<std::byte>& b) {
    if (a.size() != b.size() || a.empty()) {
        return 256;
    }
    int largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        largest = std::max(largest, std::abs(static_cast<int>(a[i]) - static_cast<int>(b[i])));
    }
    return largest;
}

/// As many frames as take about two seconds, but enough to be past the warm-up.
std::size_t framesToRun(bench::Loop& bare) {
    const bench::Run trial = bare.run(warmUp, bench::Pace::AsFastAsPossible, bench::LastPicture::Ignored);
    return std::max(3 * warmUp, static_cast<std::size_t>(2.0 * trial.framesPerSecond));
}

void compare(bench::Loop& framework, bench::Loop& bare, bench::Size size, int rounds) {
    const std::size_t frames = framesToRun(bare);
    std::vector<double> frameworkRate, bareRate, rateRatio, frameworkCpu, bareCpu, cpuRatio;
    int largestDifference = 0;
    for (int round = 0; round < rounds; ++round) {
        const auto pair = [&](bench::Pace pace, std::size_t count) {
            // Who goes first changes from round to round.
            bench::Run first = (round % 2 == 0 ? framework : bare).run(count, pace, bench::LastPicture::Read);
            bench::Run second = (round % 2 == 0 ? bare : framework).run(count, pace, bench::LastPicture::Read);
            if (round % 2 != 0) {
                std::swap(first, second);
            }
            largestDifference = std::max(largestDifference, difference(first.lastPicture, second.lastPicture));
            return std::pair(std::move(first), std::move(second));
        };
        const auto [ours, theirs] = pair(bench::Pace::AsFastAsPossible, frames);
        frameworkRate.push_back(ours.framesPerSecond);
        bareRate.push_back(theirs.framesPerSecond);
        rateRatio.push_back(ours.framesPerSecond / theirs.framesPerSecond);
        const auto [oursPaced, theirsPaced] = pair(bench::Pace::SlotIsFree, std::min(frames, pacedFrames));
        frameworkCpu.push_back(medianCpu(oursPaced));
        bareCpu.push_back(medianCpu(theirsPaced));
        cpuRatio.push_back(medianCpu(oursPaced) / medianCpu(theirsPaced));
    }
    std::printf("| %ux%u, frames a second | %.1f | %.1f | %.3f | at least 0.97 |\n", size.width, size.height,
                bench::median(frameworkRate), bench::median(bareRate), bench::median(rateRatio));
    std::printf("| %ux%u, milliseconds a frame | %.2f | %.2f | %.3f | |\n", size.width, size.height,
                1000.0 / bench::median(frameworkRate), 1000.0 / bench::median(bareRate),
                1.0 / bench::median(rateRatio));
    std::printf("| %ux%u, CPU of the drawing thread, us a frame | %.1f | %.1f | %.3f | at most 1.15 |\n", size.width,
                size.height, bench::median(frameworkCpu), bench::median(bareCpu), bench::median(cpuRatio));
    std::printf("| %ux%u, largest difference of the pictures, of 255 | | | %d | |\n", size.width, size.height,
                largestDifference);
    std::fflush(stdout);
}

void countAllocations(const char* name, bench::Loop& loop) {
    constexpr std::size_t counted = 200;
    bench::frameHooks().begin = [](std::size_t frame) {
        if (frame >= warmUp) {
            bench::startCountingAllocations();
        }
    };
    bench::frameHooks().end = [] { bench::stopCountingAllocations(); };
    loop.run(warmUp + counted, bench::Pace::AsFastAsPossible, bench::LastPicture::Ignored);
    bench::frameHooks() = {};
    for (const bench::AllocationSite& site : bench::takeAllocationSites()) {
        std::printf("| %s | %s | %.2f |\n", name, site.place.c_str(), static_cast<double>(site.count) / counted);
    }
}

int measure(int rounds) {
    const platform::SaverModule& module = prepareFramework();
    const auto device = requireDevice();
    std::printf("Device: %s (%s); %d rounds by turns, medians\n\n", device->name().c_str(),
                device->driverDescription().c_str(), rounds);
    std::printf("| | framework | bare loop | ratio | goal |\n|---|---|---|---|---|\n");
    for (const bench::Size size : {bench::Size{1920, 1080}, bench::Size{640, 480}}) {
        bench::FrameworkLoop framework(module, size);
        bench::BareLoop bare(device->name(), shaderLibrary(), size);
        compare(framework, bare, size, rounds);
    }

    std::printf("\nAllocations of the drawing thread per frame, after %zu frames:\n\n", warmUp);
    std::printf("| loop | place | per frame |\n|---|---|---|\n");
    const bench::Size size{640, 480};
    bench::FrameworkLoop framework(module, size);
    bench::BareLoop bare(device->name(), shaderLibrary(), size);
    countAllocations("framework", framework);
    countAllocations("bare loop", bare);
    return 0;
}

/// Draws with one loop only; writes a byte to standard output when the first frame has completed.
int runAlone(bench::Loop& loop, std::size_t frames) {
    bench::frameHooks().firstCompleted = [] { static_cast<void>(!write(STDOUT_FILENO, "1", 1)); };
    loop.run(frames, bench::Pace::SlotIsFree, bench::LastPicture::Ignored);
    return 0;
}

bool parse(const std::string& text, bench::Size& size) {
    return std::sscanf(text.c_str(), "%ux%u", &size.width, &size.height) == 2;
}

int run(const std::vector<std::string>& arguments) {
    if (arguments.empty()) {
        return measure(7);
    }
    if (arguments.size() == 2 && arguments[0] == "--rounds") {
        return measure(std::stoi(arguments[1]));
    }
    if (arguments.size() == 1 && arguments[0] == "--device") {
        std::puts(bench::chosenDeviceName().c_str());
        return 0;
    }
    bench::Size size;
    if (arguments.size() >= 4 && arguments[0] == "--loop" && parse(arguments[2], size)) {
        if (arguments[1] == "framework" && arguments.size() == 4) {
            bench::FrameworkLoop loop(prepareFramework(), size);
            return runAlone(loop, std::stoul(arguments[3]));
        }
        if (arguments[1] == "bare" && arguments.size() == 5) {
            bench::BareLoop loop(arguments[4], shaderLibrary(), size);
            return runAlone(loop, std::stoul(arguments[3]));
        }
    }
    if (arguments.size() == 4 && arguments[0] == "--window" && arguments[1] == "bare" && parse(arguments[2], size)) {
        bench::runBareWindow(arguments[3], shaderLibrary(), size);
    }
    std::fprintf(stderr, "usage: frame_loop_benchmark [--rounds N]\n");
    return 2;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    try {
        return run({arguments + 1, arguments + argumentCount});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "frame_loop_benchmark: %s\n", error.what());
        return 1;
    }
}
