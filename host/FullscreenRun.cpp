#include "host/EventLoop.hpp"
#include "host/PointerTravel.hpp"
#include "host/SaverWindows.hpp"
#include "host/WindowRun.hpp"

#include <QtGui/QMouseEvent>
#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <chrono>
#include <map>

namespace host {
namespace {

/// Ends the program when somebody touches the machine. Focus that comes and goes, keys that were held down before, and
/// the pointer that a window is mapped under are nobody's touch.
class Dismissal final : public QObject {
public:
    bool eventFilter(QObject*, QEvent* event) override {
        if (isTouchOfAPerson(*event)) {
            QApplication::exit(0);
        }
        return false;
    }

private:
    bool isTouchOfAPerson(const QEvent& event) {
        switch (event.type()) {
            case QEvent::KeyPress: return !static_cast<const QKeyEvent&>(event).isAutoRepeat();
            case QEvent::MouseButtonPress:
            case QEvent::Wheel:
            case QEvent::TouchBegin:
            case QEvent::TabletPress: return true;
            case QEvent::MouseMove: {
                const QPointF place = static_cast<const QMouseEvent&>(event).globalPosition();
                const auto now = std::chrono::steady_clock::now().time_since_epoch();
                return _pointer.movedTo(place.x(), place.y(),
                                        std::chrono::duration_cast<std::chrono::milliseconds>(now));
            }
            default: return false;
        }
    }

    PointerTravel _pointer;
};

/// Keeps a window over each screen that there is.
class CoveredScreens final : public QObject {
public:
    explicit CoveredScreens(const Showing& showing) : _windows(showing) {
        connect(qApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) { watch(screen); });
        connect(qApp, &QGuiApplication::screenRemoved, this, [this](QScreen* screen) { uncover(screen); });
        for (QScreen* screen : QGuiApplication::screens()) {
            watch(screen);
        }
    }

private:
    void watch(QScreen* screen) {
        connect(screen, &QScreen::geometryChanged, this, [this, screen] { cover(screen); });
        cover(screen);
    }

    void cover(QScreen* screen) {
        if (screen->geometry().isEmpty()) {
            uncover(screen);  // stands for there being none
            return;
        }
        const bool isNew = !_byScreen.contains(screen);
        SaverWindow& window = isNew ? add(screen) : *_byScreen.at(screen);
        window.setGeometry(screen->geometry());  // without a window manager nobody else does
        if (isNew) {
            window.showFullScreen();
        }
    }

    SaverWindow& add(QScreen* screen) {
        SaverWindow& window = _windows.add();
        window.setWindowFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
        window.setCursor(Qt::BlankCursor);
        window.setMouseTracking(true);
        window.setScreen(screen);
        window.winId();  // makes the native window, on that screen
        window.windowHandle()->setScreen(screen);
        _byScreen[screen] = &window;
        return window;
    }

    void uncover(QScreen* screen) {
        const auto found = _byScreen.find(screen);
        if (found != _byScreen.end()) {
            _windows.remove(*found->second);
            _byScreen.erase(found);
        }
    }

    SaverWindows _windows;
    std::map<QScreen*, SaverWindow*> _byScreen;
};

}  // namespace

void runFullscreen(const Showing& showing, const TerminationSignals& signals) {
    QApplication::setQuitOnLastWindowClosed(false);  // a machine may have no screen for a while
    CoveredScreens screens(showing);
    Dismissal dismissal;
    qApp->installEventFilter(&dismissal);
    runEventLoop(signals);
}

}  // namespace host
