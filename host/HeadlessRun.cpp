#include "host/HeadlessRun.hpp"

#include "host/Files.hpp"
#include "host/FrameRecorder.hpp"
#include "host/HeadlessReport.hpp"
#include "host/HeadlessView.hpp"
#include "host/WakeEvent.hpp"
#include "platform/Clock.hpp"
#include "platform/PreferencesStore.hpp"
#include "platform/gpu/Backend.hpp"
#include "platform/ui/ScreenSaverView.hpp"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <exception>
#include <memory>
#include <mutex>

namespace host {
namespace {

using std::chrono::steady_clock;

/// So long may pass without a frame; the largest picture on the slowest driver takes a fraction of it.
constexpr std::chrono::seconds patience{60};
constexpr std::chrono::milliseconds progressInterval{250};

/// The real clocks, but for the time of day.
class FixedTimeClock final : public platform::Clock {
public:
    explicit FixedTimeClock(std::int64_t calendarSeconds) : _calendarSeconds(calendarSeconds) {}
    platform::TimebaseInfo timebase() const override { return platform::systemClock().timebase(); }
    std::uint64_t absoluteTicks() const override { return platform::systemClock().absoluteTicks(); }
    std::int64_t calendarSeconds() const override { return _calendarSeconds; }
    double secondsSinceReferenceDate() const override { return platform::systemClock().secondsSinceReferenceDate(); }

private:
    std::int64_t _calendarSeconds;
};

/// Writes the frames that were asked for. Called on the completion thread; keeps the first failure.
class PictureWriter {
public:
    explicit PictureWriter(const HeadlessOptions& options) : _options(options) {}

    void frameCompleted(const gpu::Drawable& drawable) {
        const std::uint64_t number = drawable.identifier() + 1;
        const bool isDue = _options.every ? number % *_options.every == 0 : number == _options.frames;
        const auto layer = drawable.layer();
        if (!isDue || layer == nullptr || failure()) {
            return;
        }
        char name[48];
        std::snprintf(name, sizeof name, "frame-%06llu.png", static_cast<unsigned long long>(number));
        std::optional<std::string> failed;
        try {
            failed = writePngFile(*_options.outputDirectory / name, layer->readPixels(drawable), _options.width,
                                  _options.height);
        } catch (const std::exception& exception) {  // not enough memory, on a thread that is not ours to unwind
            failed = exception.what();
        }
        const std::lock_guard lock(_mutex);
        _failure = std::move(failed);
    }

    std::optional<std::string> failure() const {
        const std::lock_guard lock(_mutex);
        return _failure;
    }

private:
    const HeadlessOptions& _options;
    mutable std::mutex _mutex;
    std::optional<std::string> _failure;
};

/// Shows how far the run is, on a terminal only.
class Progress {
public:
    explicit Progress(std::uint64_t frames) : _frames(frames), _isTerminal(isatty(STDERR_FILENO) == 1) {}
    ~Progress() {
        if (_isTerminal && _shown) {
            std::fputs("\r\033[K", stderr);
        }
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void show(std::uint64_t completed) {
        if (_isTerminal) {
            _shown = true;
            std::fprintf(stderr, "\r%llu of %llu frames", static_cast<unsigned long long>(completed),
                         static_cast<unsigned long long>(_frames));
        }
    }

private:
    std::uint64_t _frames;
    bool _isTerminal;
    bool _shown = false;
};

std::optional<std::string> checkBeforeStart(const HeadlessOptions& options, const gpu::Device* device) {
    if (device != nullptr &&
        (options.width > device->maximumTextureSize() || options.height > device->maximumTextureSize())) {
        return device->name() + " draws at most " + std::to_string(device->maximumTextureSize()) + " pixels each way";
    }
    if (options.outputDirectory) {
        if (auto failure = prepareDirectory(*options.outputDirectory)) {
            return failure;
        }
    }
    // After that: the report may go among the pictures.
    return options.statisticsFile ? checkWritable(options.statisticsFile->parent_path()) : std::nullopt;
}

/// What the drawing threads tell the waiting main thread.
struct Signs {
    WakeEvent wake;
    std::atomic<bool> deviceLost{false};
};

/// Waits until all frames are there, a signal comes, or something went wrong.
std::optional<std::string> waitForFrames(const HeadlessOptions& options, const FrameRecorder& recorder,
                                         const PictureWriter& pictures, const TerminationSignals& signals,
                                         Signs& signs) {
    Progress progress(options.frames);
    std::uint64_t seen = 0;
    auto lastProgress = steady_clock::now();
    while (!signals.received()) {
        const std::uint64_t completed = recorder.completedFrames();
        if (auto failure = pictures.failure()) {
            return failure;
        }
        if (completed >= options.frames) {
            return {};
        }
        if (signs.deviceLost || recorder.failedFrames() > 0) {
            return "the graphics device was lost";
        }
        progress.show(completed);
        if (completed != seen) {
            seen = completed;
            lastProgress = steady_clock::now();
        } else if (steady_clock::now() - lastProgress > patience) {
            return "no frame was completed for a minute; " + std::to_string(completed) + " were before";
        }
        signs.wake.wait(signals.fileDescriptor(), progressInterval);
    }
    return {};
}

}  // namespace

void prepareHeadlessEnvironment(const HeadlessOptions& options) {
    const auto store = platform::makeMemoryPreferencesStore();
    for (const auto& [key, value] : options.settings) {
        store->setString(value, key);
    }
    platform::setPreferencesStore(store);
    if (options.calendarSeconds) {
        platform::setClock(new FixedTimeClock(*options.calendarSeconds));  // in force to the end of the process
    }
}

std::optional<std::string> runHeadless(const HeadlessOptions& options, const platform::SaverModule& module,
                                       const TerminationSignals& signals) {
    const auto device = gpu::createSystemDefaultDevice();
    if (auto failure = checkBeforeStart(options, device.get())) {
        return failure;
    }

    // Shared with the drawing threads, which may outlive this call if one of them is stuck.
    const auto signs = std::make_shared<Signs>();
    const auto pictures = std::make_shared<PictureWriter>(options);
    const auto recorder = std::make_shared<FrameRecorder>(options.frames);
    if (options.outputDirectory) {
        recorder->setFrameHandler([pictures](const gpu::Drawable& drawable) { pictures->frameCompleted(drawable); });
    }
    recorder->setProgressHandler([signs, last = options.frames](std::uint64_t completed) {
        if (completed >= last) {
            signs->wake.notify();
        }
    });
    gpu::backend()->setDeviceLostHandler([signs] {
        signs->deviceLost = true;
        signs->wake.notify();
    });
    const auto view = std::make_shared<HeadlessView>(
        gpu::Extent{options.width, options.height},
        HeadlessView::Display{options.framesPerSecond, options.realtime, options.frames}, recorder);

    const std::unique_ptr<platform::ScreenSaverView> saver(
        module.createView({0.0, 0.0, static_cast<double>(options.width), static_cast<double>(options.height)}, false));
    if (saver == nullptr) {
        return "the saver could not be made";
    }
    saver->setHostView(view);
    saver->startAnimation();
    if (const auto error = saver->shownError()) {
        return error->localizedDescription();
    }
    auto failure = waitForFrames(options, *recorder, *pictures, signals, *signs);
    saver->stopAnimation();
    if (failure || signals.received() || !options.statisticsFile) {
        return failure;
    }
    return writeTextFile(*options.statisticsFile,
                         headlessReport(recorder->measurements(), *device, options, saver->facts()));
}

}  // namespace host
