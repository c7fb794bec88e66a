#include "host/Dismissal.hpp"
#include "host/EventLoop.hpp"
#include "host/SaverWindows.hpp"
#include "host/WindowRun.hpp"

#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <chrono>
#include <map>

namespace host {
namespace {

/// Ends the program when somebody touches the machine.
class TouchFilter final : public QObject {
public:
    explicit TouchFilter(Dismissal& dismissal) : _dismissal(dismissal) {}

    bool eventFilter(QObject*, QEvent* event) override {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        if (_dismissal.isAskedForBy(*event, std::chrono::duration_cast<std::chrono::milliseconds>(now))) {
            QApplication::exit(0);
        }
        return false;
    }

private:
    Dismissal& _dismissal;
};

/// Keeps a window over each screen that there is.
class CoveredScreens final : public QObject {
public:
    CoveredScreens(const Showing& showing, Dismissal& dismissal) : _dismissal(dismissal), _windows(showing) {
        connect(qApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) { watch(screen); });
        connect(qApp, &QGuiApplication::screenRemoved, this, [this](QScreen* screen) { uncover(screen); });
        connect(qApp, &QGuiApplication::primaryScreenChanged, this, [this] { _renumber.start(); });
        connect(&_renumber, &QTimer::timeout, this, [this] { startWhereNumbersChanged(); });
        _renumber.setSingleShot(true);
        connect(qApp, &QGuiApplication::lastWindowClosed, this, [this] { endUnlessThereIsNoScreen(); });
        for (QScreen* screen : QGuiApplication::screens()) {
            watch(screen);
        }
        _numbered = QGuiApplication::screens();
    }

private:
    void watch(QScreen* screen) {
        connect(screen, &QScreen::geometryChanged, this, [this, screen] { cover(screen); });
        cover(screen);
    }

    void cover(QScreen* screen) {
        _dismissal.screensChanged();
        _renumber.start();
        if (screen->geometry().isEmpty()) {
            uncover(screen);  // stands for there being none
            return;
        }
        const bool isNew = !_byScreen.contains(screen);
        SaverWindow& window = isNew ? add(screen) : *_byScreen.at(screen);
        window.setGeometry(screen->geometry());  // without a window manager nobody else does
        if (isNew) {
            window.showFullScreen();
            window.activateWindow();  // for the keys
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
        _dismissal.screensChanged();
        _renumber.start();
        const auto found = _byScreen.find(screen);
        if (found != _byScreen.end()) {
            SaverWindow& window = *found->second;
            _byScreen.erase(found);
            _windows.remove(window);
        }
    }

    /// Which screen is the first decides which one draws where only one does. When all that a change of screens brings
    /// along has come in, views on screens whose number changed start again.
    void startWhereNumbersChanged() {
        const QList<QScreen*> before = std::exchange(_numbered, QGuiApplication::screens());
        for (const auto& [screen, window] : _byScreen) {
            if (before.contains(screen) && before.indexOf(screen) != _numbered.indexOf(screen)) {
                window->startAnew();
            }
        }
    }

    /// Window managers can close windows; but the last one also goes with the last screen.
    void endUnlessThereIsNoScreen() {
        if (!_byScreen.empty()) {
            QApplication::exit(0);
        }
    }

    Dismissal& _dismissal;
    SaverWindows _windows;
    std::map<QScreen*, SaverWindow*> _byScreen;
    QList<QScreen*> _numbered;  ///< in the order of their numbers when these were last looked at
    QTimer _renumber;
};

}  // namespace

void runFullscreen(const Showing& showing, const TerminationSignals& signals) {
    QApplication::setQuitOnLastWindowClosed(false);  // a machine may have no screen for a while
    Dismissal dismissal;
    CoveredScreens screens(showing, dismissal);
    TouchFilter touches(dismissal);
    qApp->installEventFilter(&touches);
    runEventLoop(signals);
}

}  // namespace host
