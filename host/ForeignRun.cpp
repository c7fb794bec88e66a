#include "host/EventLoop.hpp"
#include "host/ForeignWindow.hpp"
#include "host/SaverWindows.hpp"
#include "host/WindowRun.hpp"

#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <cstdio>
#include <memory>

namespace host {
namespace {

/// The screen that most people would say that this place is on; a view asks its window, and that its parent's.
QScreen* screenAt(const QRect& place) {
    QScreen* best = QGuiApplication::primaryScreen();
    int largest = 0;
    for (QScreen* screen : QGuiApplication::screens()) {
        const QRect shared = screen->geometry() & place;
        if (shared.width() * shared.height() > largest) {
            largest = shared.width() * shared.height();
            best = screen;
        }
    }
    return best;
}

void putInto(QWidget& widget, QWindow& parent, QSize size) {
    // All that a person does is for the parent's owner, and where it lies is for nobody else to say.
    widget.setWindowFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint | Qt::WindowTransparentForInput);
    widget.setAttribute(Qt::WA_ShowWithoutActivating);
    widget.setFocusPolicy(Qt::NoFocus);
    widget.setGeometry(QRect(QPoint(), size));  // before there is a native window, which would come in another size
    ignoreInput(static_cast<std::uint32_t>(widget.winId()));
    widget.windowHandle()->setParent(&parent);
}

}  // namespace

std::optional<std::string> runInForeignWindow(const Showing& showing, std::uint32_t window,
                                              const TerminationSignals& signals) {
    QApplication::setQuitOnLastWindowClosed(false);
    ForeignWindow foreign(window);
    const auto size = foreign.size();
    if (!size) {
        char text[16];
        std::snprintf(text, sizeof text, "0x%x", window);
        return "there is no X11 window " + std::string(text) + " on this display";
    }
    const std::unique_ptr<QWindow> parent(QWindow::fromWinId(window));
    parent->setScreen(screenAt(foreign.placeOnDesktop()));

    SaverWindows windows(showing);
    SaverWindow& inside = windows.add();
    putInto(inside, *parent, *size);
    foreign.setResizeHandler([&](QSize newSize) {
        parent->setScreen(screenAt(foreign.placeOnDesktop()));
        inside.setGeometry(QRect(QPoint(), newSize));
    });
    foreign.setMapHandler([&](bool isMapped) { inside.setVisible(isMapped); });
    foreign.setDestroyHandler([] { QApplication::exit(0); });
    inside.setVisible(foreign.isMapped());
    runEventLoop(signals);
    return {};
}

}  // namespace host
