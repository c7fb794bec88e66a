#include "platform/ui/LayerWidget.hpp"

#include "platform/gpu/Layer.hpp"

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <cmath>
#include <utility>

namespace platform {
namespace {

int rounded(double value) {
    return static_cast<int>(std::lround(value));
}

/// Some displays, virtual ones above all, report no rate or a nonsensical one.
double plausibleRefreshRate(double reported) {
    constexpr double usualRate = 60.0;
    return reported > 1.0 ? reported : usualRate;
}

}  // namespace

/// The widget as renderers see it; outlives the widget where somebody still holds it, and is then empty.
class LayerWidget::View final : public HostView {
public:
    explicit View(LayerWidget* widget) : _widget(widget) {}

    void forgetWidget() { _widget = nullptr; }

    Rect bounds() const override {
        return _widget == nullptr
                   ? Rect{}
                   : Rect{0.0, 0.0, static_cast<double>(_widget->width()), static_cast<double>(_widget->height())};
    }

    Rect convertRectToBacking(const Rect& rect) const override {
        const double scale = _widget != nullptr ? _widget->devicePixelRatioF() : 1.0;
        return {std::round(rect.x * scale), std::round(rect.y * scale), std::round(rect.width * scale),
                std::round(rect.height * scale)};
    }

    std::optional<std::uint32_t> screenNumber() const override {
        if (_widget == nullptr) {
            return {};
        }
        const auto index = QGuiApplication::screens().indexOf(_widget->screen());
        return index >= 0 ? std::optional(static_cast<std::uint32_t>(index)) : std::nullopt;
    }

    int createDisplayLink(std::uint32_t displayIdentifier, std::unique_ptr<DisplayLink>& link) override {
        const auto screens = QGuiApplication::screens();
        if (displayIdentifier >= static_cast<std::uint32_t>(screens.size())) {
            return displayLinkInvalidArgument;
        }
        // In thousandths of a hertz, so that 59.94 Hz stays what it is.
        constexpr int thousandths = 1000;
        const double rate = plausibleRefreshRate(screens[static_cast<qsizetype>(displayIdentifier)]->refreshRate());
        link = makeTimerDisplayLink({thousandths, rounded(rate * thousandths)});
        return link != nullptr ? displayLinkSuccess : displayLinkAllocationFailed;
    }

    void setLayer(std::shared_ptr<gpu::Layer> layer) override {
        if (_widget != nullptr) {
            _widget->setLayer(std::move(layer));
        }
    }

    void setWantsLayer(bool) override {}

private:
    LayerWidget* _widget;
};

LayerWidget::LayerWidget(QWidget* parent)
    : QWidget(parent), _view(std::make_shared<View>(this)), _overlays([this] { updateOverlays(); }) {
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    QPalette black = palette();
    black.setColor(QPalette::Window, Qt::black);
    setPalette(black);
    setAutoFillBackground(true);

    _settling.setSingleShot(true);
    _settling.setInterval(sizeSettlingMilliseconds);
    QObject::connect(&_settling, &QTimer::timeout, this, [this] { sizeSettled(); });
    _following.setSingleShot(true);
    QObject::connect(&_following, &QTimer::timeout, this, [this] { windowChanged(); });
    _telling.setSingleShot(true);
    QObject::connect(&_telling, &QTimer::timeout, this, [this] { tellVisibility(); });
}

LayerWidget::~LayerWidget() {
    _view->forgetWidget();
    setLayer(nullptr);
}

std::shared_ptr<HostView> LayerWidget::hostView() const {
    return _standIn != nullptr ? _standIn : _view;
}

void LayerWidget::setLayer(std::shared_ptr<gpu::Layer> layer) {
    hideLayer();
    _layer = std::move(layer);
    if (_layer != nullptr) {
        _layer->setShowsFrames(_showsFrames);
    }
    if (isVisible()) {
        showLayer();
    }
}

void LayerWidget::setShowsFrames(bool showsFrames) {
    _showsFrames = showsFrames;
    if (_layer != nullptr) {
        _layer->setShowsFrames(showsFrames);
    }
}

void LayerWidget::addOverlay(QWidget* child) {
    _overlays.add(child);
    updateOverlays();
}

void LayerWidget::removeOverlay(QWidget* child) {
    _overlays.remove(child);
    updateOverlays();
}

void LayerWidget::updateOverlays() {
    if (_layer != nullptr && isVisible()) {
        _layer->setOverlay(_overlays.picture(*this));
    }
}

void LayerWidget::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    showLayer();
}

void LayerWidget::hideEvent(QHideEvent* event) {
    hideLayer();
    QWidget::hideEvent(event);
}

void LayerWidget::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    windowChanged();
}

void LayerWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    windowChanged();
    updateOverlays();
    _settling.start();
}

/// Of the native top-level window: what the widget itself is not told of, such as a frame or a scale that comes late.
bool LayerWidget::eventFilter(QObject* watched, QEvent* event) {
    if (isVisible() && (event->type() == QEvent::Expose || event->type() == QEvent::Resize)) {
        _following.start();
    }
    return QWidget::eventFilter(watched, event);
}

/// Also finishes what could not be shown before because there was no native window yet.
void LayerWidget::windowChanged() {
    if (!isVisible()) {
        return;
    }
    if (_layerWindow == nullptr) {
        showLayer();
    } else {
        _layerWindow->follow();
    }
    if (std::exchange(_shownScale, devicePixelRatioF()) != devicePixelRatioF()) {
        updateOverlays();
        _settling.start();
    }
}

void LayerWidget::showLayer() {
    if (_layer == nullptr || _layerWindow != nullptr) {
        return;
    }
    window()->winId();  // makes the native window
    window()->windowHandle()->installEventFilter(this);
    _layerWindow = makeLayerWindow(*this, [this](bool isSeen) { noteVisibility(isSeen); });
    if (_layerWindow != nullptr) {
        _layer->setPresentationTarget(_layerWindow->presentationTarget());
    }
    updateOverlays();
}

void LayerWidget::hideLayer() {
    if (_layer != nullptr && _layerWindow != nullptr) {
        _layer->setPresentationTarget({});
    }
    _layerWindow.reset();
    noteVisibility(true);  // the next window counts as visible until it is known not to be
}

void LayerWidget::noteVisibility(bool isSeen) {
    _isSeen = isSeen;
    _telling.start();
}

void LayerWidget::tellVisibility() {
    if (std::exchange(_isToldSeen, _isSeen) != _isSeen && _visibility) {
        _visibility(_isSeen);
    }
}

}  // namespace platform
