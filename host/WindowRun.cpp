#include "host/WindowRun.hpp"

#include "host/EventLoop.hpp"
#include "host/SaverWindows.hpp"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>

namespace host {
namespace {

constexpr QSize initialSize{1280, 720};
constexpr QSize smallestSize{160, 100};

/// Closes a window at the keys that people try.
class ClosingKeys final : public QObject {
public:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            if (key == Qt::Key_Escape || key == Qt::Key_Q) {
                static_cast<QWidget*>(object)->close();
                return true;
            }
        }
        return false;
    }
};

}  // namespace

void runWindow(const Showing& showing, const TerminationSignals& signals) {
    ClosingKeys keys;
    SaverWindows windows(showing);
    SaverWindow& window = windows.add();
    window.setMinimumSize(smallestSize);
    window.resize(initialSize);
    window.installEventFilter(&keys);
    window.show();
    runEventLoop(signals);
}

}  // namespace host
