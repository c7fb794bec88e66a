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
                           const HeadlessOptions& options, const platform::SaverSession& session) {
    const Json report{
        {"frames", measurements.frames},
        {"wall_seconds", measurements.wallSeconds},
        {"frame_rate", measurements.frameRate},
        {"preparation_ms", toJson(measurements.preparationMs)},
        {"rendering_ms", toJson(measurements.renderingMs)},
        {"elapsed_ms", toJson(measurements.elapsedMs)},
        {"device", device.name()},
        {"driver", device.driverDescription()},
        {"drawable", sizeToJson(options.width, options.height)},
        {"intermediate", sizeToJson(session.intermediateWidth(), session.intermediateHeight())},
        {"seed", session.seed()},
    };
    // A driver's name need not be valid UTF-8.
    return report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace host
