#pragma once

#include <QtCore/QAbstractNativeEventFilter>
#include <QtCore/QTimer>
#include <cstdint>
#include <functional>

struct xcb_connection_t;

namespace platform {

/// Watches whether an X11 window can be seen: not where other windows cover all of it, not while a window that it lies
/// in is hidden, and not while the monitor is off. The window must have been asked for its visibility events. Where a
/// compositing manager runs, windows count as never covered. Main thread; the connection is the application's own and
/// must outlive it.
class X11Visibility final : private QAbstractNativeEventFilter {
public:
    X11Visibility(xcb_connection_t* connection, std::uint32_t window, std::function<void(bool isVisible)> handler);
    ~X11Visibility() override;
    X11Visibility(const X11Visibility&) = delete;
    X11Visibility& operator=(const X11Visibility&) = delete;

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    void look();
    bool takeAnswer(unsigned int question, void*& answer);
    void update();

    xcb_connection_t* _connection;
    std::uint32_t _window;
    std::function<void(bool)> _handler;
    bool _isCovered = false;
    bool _isWithinHidden = false;
    bool _monitorIsOff = false;
    bool _isVisible = true;
    // The numbers of the requests whose answers are on their way; 0 for none.
    unsigned int _aboutMonitor = 0;
    unsigned int _aboutWindow = 0;
    QTimer _timer;
};

}  // namespace platform
