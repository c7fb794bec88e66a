#include "host/CommandLine.hpp"
#include "host/HeadlessRun.hpp"
#include "host/ModuleLoader.hpp"
#include "host/Number.hpp"
#include "host/PreferencesWatcher.hpp"
#include "host/TerminationSignals.hpp"
#include "host/WindowIdentifier.hpp"
#include "host/WindowRun.hpp"
#include "host/WindowSystem.hpp"
#include "platform/Paths.hpp"
#include "platform/PreferencesStore.hpp"
#include "platform/gpu/vulkan/VulkanBackend.hpp"
#include "platform/ui/ApplicationDisplay.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace {

constexpr int exitFailure = 1;
constexpr int exitUsage = 2;

/// Who ends a saver may wait for it, and with it the person at the machine. A tenth of a second is not noticed; some of
/// it goes into taking a process down.
constexpr std::chrono::milliseconds patienceWithTheEnd{60};

int complain(std::string_view reason, int status) {
    std::fprintf(stderr, "cirrane: %.*s\n", static_cast<int>(reason.size()), reason.data());
    return status;
}

void print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

gpu::vulkan::VulkanOptions vulkanOptions(const host::CommandLine& line) {
    gpu::vulkan::VulkanOptions options;
    options.device = line.device;
    options.validate = line.validate;
    options.validationMessage = [](std::string_view message) {
        std::fprintf(stderr, "%.*s\n", static_cast<int>(message.size()), message.data());
    };
    options.pipelineCacheDirectory = platform::cacheDirectory() / "cirrane";
    return options;
}

bool isCalled(const std::string& wish, std::size_t index, const std::string& name) {
    const auto equalIgnoringCase = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    };
    return host::wholeNumber<std::size_t>(wish) == index ||
           std::search(name.begin(), name.end(), wish.begin(), wish.end(), equalIgnoringCase) != name.end();
}

/// What keeps a wish of the command line from coming true, if anything does. Asked first, because the saver itself can
/// only say that it found no device.
std::optional<std::string> unfulfilledWish(const host::CommandLine& line) {
    if (line.device.empty() && !line.validate) {
        return {};
    }
    gpu::vulkan::VulkanOptions options = vulkanOptions(line);
    const auto devices = gpu::vulkan::listDevices(options);
    if (devices.empty()) {
        options.validate = false;
        return line.validate && !gpu::vulkan::listDevices(options).empty()
                   ? "--validate: the Khronos validation layer is not installed"
                   : "no Vulkan device found";
    }
    for (std::size_t i = 0; i < devices.size(); ++i) {
        if (line.device.empty() || isCalled(line.device, i, devices[i].name)) {
            return {};
        }
    }
    return "--device " + line.device + ": there is no such device (--list-devices lists them)";
}

int listDevices(const host::CommandLine& line) {
    if (const auto reason = unfulfilledWish(line)) {
        return complain(*reason, exitFailure);
    }
    const auto devices = gpu::vulkan::listDevices(vulkanOptions(line));
    for (std::size_t i = 0; i < devices.size(); ++i) {
        const auto& device = devices[i];
        std::printf("%zu  %s  (%s, %s, Vulkan %s%s)\n", i, device.name.c_str(), device.kind.c_str(),
                    device.driver.c_str(), device.apiVersion.c_str(),
                    device.hasAllFeatures ? "" : "; lacks what Cirrane needs");
    }
    return devices.empty() ? complain("no Vulkan device found", exitFailure) : 0;
}

/// What either way of running comes to: a failure to report, or an end, perhaps by a signal.
int finish(const std::optional<std::string>& failure, const host::TerminationSignals& signals) {
    if (const auto signalNumber = signals.received()) {
        host::TerminationSignals::raiseAgain(*signalNumber);
    }
    return failure ? complain(*failure, exitFailure) : 0;
}

int runHeadless(const host::CommandLine& line, const host::TerminationSignals& signals) {
    const host::WindowSystem windowSystem(host::WindowSystem::Kind::None);
    if (const auto reason = unfulfilledWish(line)) {
        return complain(*reason, exitFailure);
    }
    gpu::setBackend(gpu::vulkan::makeVulkanBackend(vulkanOptions(line)));
    host::prepareHeadlessEnvironment(line.headless);
    const auto module = host::loadSaverModule(line.module);
    if (const auto* reason = std::get_if<std::string>(&module)) {
        return complain(*reason, exitFailure);
    }
    return finish(host::runHeadless(line.headless, *std::get<const platform::SaverModule*>(module), signals), signals);
}

/// The window that a screen saver host made for this saver, or why none is known.
std::variant<std::uint32_t, std::string> foreignWindow(const host::CommandLine& line) {
    if (line.mode == host::Mode::WindowId) {
        return line.windowIdentifier;
    }
    const char* const name = std::getenv("XSCREENSAVER_WINDOW");  // NOLINT(concurrency-mt-unsafe)
    if (name == nullptr) {
        return "--root draws in the window that XSCREENSAVER_WINDOW names, which is not set";
    }
    const auto window = host::parseWindowIdentifier(name);
    if (!window) {
        return "XSCREENSAVER_WINDOW is \"" + std::string(name) + "\", which names no X11 window";
    }
    return *window;
}

/// Other processes change the settings too, such as those that `--configure` runs in.
std::unique_ptr<host::PreferencesWatcher> watchSettings(const host::LoadedSaver& saver) {
    const auto* const module = std::get_if<const platform::SaverModule*>(&saver);
    const auto bundle = module != nullptr ? host::bundleOf(**module) : nullptr;
    const auto name = bundle != nullptr ? bundle->bundleIdentifier() : std::nullopt;
    return name ? std::make_unique<host::PreferencesWatcher>(**module, *name) : nullptr;
}

int runInWindows(const host::CommandLine& line, const host::TerminationSignals& signals) {
    const bool isForeign = line.mode == host::Mode::Root || line.mode == host::Mode::WindowId;
    if (!line.display.empty()) {
        setenv("DISPLAY", line.display.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): no other thread runs yet
        setenv("QT_QPA_PLATFORM", "xcb", 1);         // NOLINT(concurrency-mt-unsafe): an X11 display is meant
    }
    std::uint32_t window = 0;
    if (isForeign) {
        const auto found = foreignWindow(line);
        if (const auto* reason = std::get_if<std::string>(&found)) {
            return complain(*reason, exitFailure);
        }
        window = std::get<std::uint32_t>(found);
    }
    using Kind = host::WindowSystem::Kind;
    const host::WindowSystem windowSystem(isForeign ? Kind::X11Pixels : Kind::Desktop);
    if (windowSystem.failure()) {
        return complain(*windowSystem.failure(), exitFailure);
    }
    if (const auto reason = unfulfilledWish(line)) {
        return complain(*reason, exitFailure);
    }
    auto options = vulkanOptions(line);
    options.presentation = platform::applicationPresentationServer();
    gpu::setBackend(gpu::vulkan::makeVulkanBackend(std::move(options)));
    if (line.testError) {
        platform::setPreferencesStore(platform::makeMemoryPreferencesStore());
    }

    const bool isPreview = line.mode == host::Mode::WindowId || line.mode == host::Mode::Configure;
    const host::Showing showing{host::loadSaverModule(line.module), isPreview, line.testError};
    int status = 0;
    if (const auto* reason = std::get_if<std::string>(&showing.saver)) {
        status = complain(*reason, exitFailure);  // and the window shows it until it is ended
    }
    const auto watcher = watchSettings(showing.saver);
    std::optional<std::string> failure;
    switch (line.mode) {
        case host::Mode::Fullscreen: host::runFullscreen(showing, signals); break;
        case host::Mode::Configure: host::runConfigure(line, showing, signals); break;
        case host::Mode::Root:
        case host::Mode::WindowId: failure = host::runInForeignWindow(showing, window, signals); break;
        default: host::runWindow(showing, signals); break;
    }
    return isForeign ? finish(failure, signals) : std::max(status, finish(failure, signals));
}

int run(const std::vector<std::string_view>& arguments) {
    const auto parsed = host::parseCommandLine(arguments);
    if (const auto* reason = std::get_if<std::string>(&parsed)) {
        return complain(*reason, exitUsage);
    }
    const auto& line = std::get<host::CommandLine>(parsed);
    switch (line.mode) {
        case host::Mode::Help: print(host::helpText()); return 0;
        case host::Mode::Version: print("cirrane " CIRRANE_VERSION "\n"); return 0;
        case host::Mode::ListDevices: return listDevices(line);
        case host::Mode::Headless: return runHeadless(line, host::TerminationSignals());
        case host::Mode::Window:
        case host::Mode::Fullscreen:
        case host::Mode::Root:
        case host::Mode::WindowId:
        case host::Mode::Configure: return runInWindows(line, host::TerminationSignals(patienceWithTheEnd));
    }
    return exitFailure;
}

/// What is opened next must not become a stream that others have closed, and get our complaints.
void openStandardStreams() {
    int descriptor = -1;
    do {
        descriptor = open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    close(descriptor);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    openStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);  // standard error may be a pipe that nobody reads any more
    std::setlocale(LC_ALL, "");     // NOLINT(concurrency-mt-unsafe): no other thread runs yet
    try {
        return run({arguments + 1, arguments + argumentCount});
    } catch (const std::exception& exception) {
        return complain(exception.what(), exitFailure);
    }
}
