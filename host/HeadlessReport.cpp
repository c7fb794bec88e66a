#include "host/HeadlessReport.hpp"

#include <nlohmann/json.hpp>

namespace host {
namespace {

using Json = nlohmann::ordered_json;

Json toJson(const Summary& summary) {
    return {{"mean", summary.mean}, {"p50", summary.p50}, {"p99", summary.p99}, {"max", summary.max}};
}

Json sizeToJson(std::uint64_t width, std::uint64_t height) {
    return {{"width", width}, {"height", height}};
}

}  // namespace

std::string headlessReport(const FrameRecorder::Measurements& measurements, const gpu::Device& device,
                           const HeadlessOptions& options, const std::map<std::string, std::uint64_t>& facts) {
    Json report{
        {"frames", measurements.frames},
        {"wall_seconds", measurements.wallSeconds},
        {"frame_rate", measurements.frameRate},
        {"preparation_ms", toJson(measurements.preparationMs)},
        {"rendering_ms", toJson(measurements.renderingMs)},
        {"elapsed_ms", toJson(measurements.elapsedMs)},
        {"device", device.name()},
        {"driver", device.driverDescription()},
        {"drawable", sizeToJson(options.width, options.height)},
    };
    const auto width = facts.find("intermediateWidth");
    const auto height = facts.find("intermediateHeight");
    if (width != facts.end() && height != facts.end()) {
        report["intermediate"] = sizeToJson(width->second, height->second);
    }
    if (const auto seed = facts.find("seed"); seed != facts.end()) {
        report["seed"] = seed->second;
    }
    // A driver's name need not be valid UTF-8.
    return report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace host
