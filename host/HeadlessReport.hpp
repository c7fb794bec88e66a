#pragma once

#include "host/CommandLine.hpp"
#include "host/FrameRecorder.hpp"
#include "platform/gpu/Device.hpp"

#include <cstdint>
#include <map>
#include <string>

namespace host {

/// What `--stats` writes: one JSON object; times in milliseconds, sizes in pixels. `facts` are the saver's own.
std::string headlessReport(const FrameRecorder::Measurements& measurements, const gpu::Device& device,
                           const HeadlessOptions& options, const std::map<std::string, std::uint64_t>& facts);

}  // namespace host
