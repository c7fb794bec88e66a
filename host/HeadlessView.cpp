#include "host/HeadlessView.hpp"

#include <cmath>
#include <utility>

namespace host {

HeadlessView::HeadlessView(gpu::Extent size, Display display, std::shared_ptr<FrameRecorder> recorder)
    : _size(size), _display(display), _recorder(std::move(recorder)) {}

HeadlessView::~HeadlessView() {
    setLayer(nullptr);
}

platform::Rect HeadlessView::bounds() const {
    return {0.0, 0.0, static_cast<double>(_size.width), static_cast<double>(_size.height)};
}

int HeadlessView::createDisplayLink(std::uint32_t, std::unique_ptr<platform::DisplayLink>& link) {
    // In thousandths, so that 59.94 Hz is what it says.
    constexpr std::int64_t thousandths = 1000;
    const platform::RefreshPeriod period{
        thousandths,
        static_cast<std::int32_t>(std::lround(_display.framesPerSecond * static_cast<double>(thousandths)))};
    link = _display.realtime ? platform::makeTimerDisplayLink(period)
                             : platform::makeFreeRunningDisplayLink(period, _display.frames, nullptr);
    return link != nullptr ? platform::displayLinkSuccess : platform::displayLinkAllocationFailed;
}

void HeadlessView::setLayer(std::shared_ptr<gpu::Layer> layer) {
    if (_layer != nullptr) {
        _layer->setFrameObserver(nullptr);
    }
    _layer = std::move(layer);
    if (_layer != nullptr) {
        _layer->setFrameObserver(_recorder);
    }
}

}  // namespace host
