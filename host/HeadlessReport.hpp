#pragma once

#include "host/CommandLine.hpp"
#include "host/FrameRecorder.hpp"
#include "platform/SaverModule.hpp"
#include "platform/gpu/Device.hpp"

#include <string>

namespace host {

/// What `--stats` writes: one JSON object; times in milliseconds, sizes in pixels.
std::string headlessReport(const FrameRecorder::Measurements& measurements, const gpu::Device& device,
                           const HeadlessOptions& options, const platform::SaverSession& session);

}  // namespace host
