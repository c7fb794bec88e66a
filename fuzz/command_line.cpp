// The command line, its words one after the other with zeros between them.
#include "fuzz/Fuzz.hpp"
#include "host/CommandLine.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

using host::CommandLine;
using host::Mode;

namespace {

std::vector<std::string_view> wordsIn(std::string_view text) {
    std::vector<std::string_view> words;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\0'), text.size());
        words.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

std::string_view modeOption(Mode mode) {
    switch (mode) {
        case Mode::Window: return "--window";
        case Mode::Fullscreen: return "--fullscreen";
        case Mode::Root: return "--root";
        case Mode::WindowId: return "";  // said with its window
        case Mode::Configure: return "--configure";
        case Mode::Headless: return "--headless";
        case Mode::ListDevices: return "--list-devices";
        case Mode::Version: return "--version";
        case Mode::Help: return "--help";
    }
    return "";
}

void addHeadless(std::vector<std::string>& words, const host::HeadlessOptions& headless) {
    const auto add = [&words](const char* option, std::string value) {
        words.insert(words.end(), {option, std::move(value)});
    };
    add("--size", fmt::format("{}x{}", headless.width, headless.height));
    add("--frames", fmt::format("{}", headless.frames));
    add("--fps", fmt::format("{}", headless.framesPerSecond));
    if (headless.realtime) {
        words.emplace_back("--realtime");
    }
    if (headless.calendarSeconds) {
        add("--time", fmt::format("{}", *headless.calendarSeconds));
    }
    for (const auto& [key, value] : headless.settings) {
        add("--set", key + "=" + value);
    }
    if (headless.outputDirectory) {
        add("--output", headless.outputDirectory->string());
    }
    if (headless.every) {
        add("--every", fmt::format("{}", *headless.every));
    }
    if (headless.statisticsFile) {
        add("--stats", headless.statisticsFile->string());
    }
}

/// The words that say the same, with nothing left to defaults.
std::vector<std::string> wordsFor(const CommandLine& line) {
    std::vector<std::string> words;
    if (line.mode == Mode::WindowId) {
        words.insert(words.end(), {"--window-id", fmt::format("{}", line.windowIdentifier)});
    } else {
        words.emplace_back(modeOption(line.mode));
    }
    if (line.mode >= Mode::Headless) {
        addHeadless(words, line.headless);
    }
    if (line.testError) {
        words.insert(words.end(),
                     {"--test-error", fmt::format("{}:{}", line.testError->code, line.testError->subCode)});
    }
    if (!line.display.empty()) {
        words.insert(words.end(), {"--display", line.display});
    }
    if (!line.device.empty()) {
        words.insert(words.end(), {"--device", line.device});
    }
    if (line.validate) {
        words.emplace_back("--validate");
    }
    if (line.module) {
        words.insert(words.end(), {"--module", line.module->string()});
    }
    return words;
}

void checkLimits(const host::HeadlessOptions& headless) {
    const auto isSane = [](std::uint32_t length) { return length >= 1 && length <= host::maximumSize; };
    fuzz::require(isSane(headless.width) && isSane(headless.height), "a size is within its limits");
    fuzz::require(headless.frames >= 1 && headless.every.value_or(1) >= 1, "there is a frame to draw");
    fuzz::require(headless.framesPerSecond >= 1.0 && headless.framesPerSecond <= 1000.0, "a rate is within its limits");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto parsed = host::parseCommandLine(wordsIn(fuzz::text(data, size)));
    if (const auto* reason = std::get_if<std::string>(&parsed)) {
        fuzz::require(!reason->empty(), "a refused command line has a reason");
        return 0;
    }
    const auto& line = std::get<CommandLine>(parsed);
    checkLimits(line.headless);
    const std::vector<std::string> words = wordsFor(line);
    const auto again = host::parseCommandLine({words.begin(), words.end()});
    fuzz::require(std::holds_alternative<CommandLine>(again) && wordsFor(std::get<CommandLine>(again)) == words,
                  "what was understood can be said again");
    return 0;
}
