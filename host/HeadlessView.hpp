#pragma once

#include "host/FrameRecorder.hpp"
#include "platform/HostView.hpp"
#include "platform/gpu/Layer.hpp"

#include <cstdint>
#include <memory>

namespace host {

/// A view of a given size on no screen at all: its frames are drawn, observed and never shown.
class HeadlessView final : public platform::HostView {
public:
    struct Display {
        double framesPerSecond = 60.0;
        /// Ticks at that rate; otherwise as fast as the frames complete, `frames` times.
        bool realtime = false;
        std::uint64_t frames = 0;
    };

    HeadlessView(gpu::Extent size, Display display, std::shared_ptr<FrameRecorder> recorder);
    ~HeadlessView() override;

    platform::Rect bounds() const override;
    platform::Rect convertRectToBacking(const platform::Rect& rect) const override { return rect; }
    std::optional<std::uint32_t> screenNumber() const override { return 0; }
    int createDisplayLink(std::uint32_t displayIdentifier, std::unique_ptr<platform::DisplayLink>& link) override;
    void setLayer(std::shared_ptr<gpu::Layer> layer) override;
    void setWantsLayer(bool) override {}

    std::shared_ptr<gpu::Layer> layer() const { return _layer; }

private:
    gpu::Extent _size;
    Display _display;
    std::shared_ptr<FrameRecorder> _recorder;
    std::shared_ptr<gpu::Layer> _layer;
};

}  // namespace host
