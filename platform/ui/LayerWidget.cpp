#include "platform/ui/LayerWidget.hpp"

#include "platform/gpu/Layer.hpp"

#include <xcb/xcb.h>

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <cmath>
#include <utility>

namespace platform {
namespace {

xcb_connection_t* applicationConnection() {
    if (QGuiApplication::platformName() != QLatin1String("xcb")) {
        return nullptr;
    }
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr;
}

int rounded(double value) {
    return static_cast<int>(std::lround(value));
}

/// Some displays, virtual ones above all, report no rate or a nonsensical one.
double plausibleRefreshRate(double reported) {
    constexpr double usualRate = 60.0;
    return reported > 1.0 ? reported : usualRate;
}

}  // namespace

X11Server applicationX11Server() {
    xcb_connection_t* connection = applicationConnection();
    if (connection == nullptr) {
        return {};
    }
    return {connection, xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root_visual};
}

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

LayerWidget::LayerWidget(QWidget* parent) : QWidget(parent), _view(std::make_shared<View>(this)) {
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    QPalette black = palette();
    black.setColor(QPalette::Window, Qt::black);
    setPalette(black);
    setAutoFillBackground(true);

    _settling.setSingleShot(true);
    _settling.setInterval(sizeSettlingMilliseconds);
    QObject::connect(&_settling, &QTimer::timeout, this, [this] { sizeSettled(); });
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
    if (isVisible()) {
        showLayer();
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
    placeLayer();
}

void LayerWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeLayer();
    _settling.start();
}

PixelRect LayerWidget::placeInWindow() const {
    const double scale = devicePixelRatioF();
    const QPoint corner = mapTo(window(), QPoint(0, 0));
    return {rounded(corner.x() * scale), rounded(corner.y() * scale), rounded(width() * scale),
            rounded(height() * scale)};
}

void LayerWidget::showLayer() {
    xcb_connection_t* connection = applicationConnection();
    if (_layer == nullptr || _layerWindow != nullptr || connection == nullptr) {
        return;
    }
    const auto parent = static_cast<std::uint32_t>(window()->winId());
    _layerWindow = std::make_unique<X11LayerWindow>(connection, parent, placeInWindow());
    _layer->setPresentationTarget(_layerWindow->presentationTarget());
}

void LayerWidget::hideLayer() {
    if (_layer != nullptr && _layerWindow != nullptr) {
        _layer->setPresentationTarget({});
    }
    _layerWindow.reset();
}

void LayerWidget::placeLayer() {
    if (_layerWindow != nullptr) {
        _layerWindow->setPlace(placeInWindow());
    }
}

}  // namespace platform
