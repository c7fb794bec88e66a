#include "platform/ui/X11Visibility.hpp"

#include <xcb/dpms.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <QtCore/QCoreApplication>
#include <chrono>
#include <cstdlib>
#include <utility>

namespace platform {
namespace {

bool hasPowerManagement(xcb_connection_t* connection) {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_dpms_id);
    return extension != nullptr && extension->present != 0;
}

bool saysOff(const xcb_dpms_info_reply_t& answer) {
    return answer.state != 0 && answer.power_level != XCB_DPMS_DPMS_MODE_ON;
}

}  // namespace

X11Visibility::X11Visibility(xcb_connection_t* connection, std::uint32_t window,
                             std::function<void(bool isVisible)> handler)
    : _connection(connection), _window(window), _handler(std::move(handler)) {
    QCoreApplication::instance()->installNativeEventFilter(this);
    constexpr std::chrono::seconds interval{1};  // an answer is read one interval after its question
    QObject::connect(&_timer, &QTimer::timeout, &_timer, [this] { look(); });
    _timer.start(interval);
}

X11Visibility::~X11Visibility() {
    for (const unsigned int question : {_aboutMonitor, _aboutWindow}) {
        if (question != 0) {
            xcb_discard_reply(_connection, question);
        }
    }
}

bool X11Visibility::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    constexpr int kindOfEvent = 0x7F;  // without the mark of events that other programs sent
    if (eventType == "xcb_generic_event_t" && (event->response_type & kindOfEvent) == XCB_VISIBILITY_NOTIFY) {
        const auto* change = static_cast<const xcb_visibility_notify_event_t*>(message);
        if (change->window == _window) {
            _isCovered = change->state == XCB_VISIBILITY_FULLY_OBSCURED;
            _isWithinHidden = false;  // only windows that can be viewed get this
            update();
        }
    }
    return false;
}

/// For what no event tells.
void X11Visibility::look() {
    void* answer = nullptr;
    if (takeAnswer(_aboutWindow, answer)) {
        const auto* window = static_cast<const xcb_get_window_attributes_reply_t*>(answer);
        _isWithinHidden = window != nullptr && window->map_state == XCB_MAP_STATE_UNVIEWABLE;
        _aboutWindow = xcb_get_window_attributes(_connection, _window).sequence;
        std::free(answer);
    }
    if (hasPowerManagement(_connection) && takeAnswer(_aboutMonitor, answer)) {
        _monitorIsOff = answer != nullptr && saysOff(*static_cast<const xcb_dpms_info_reply_t*>(answer));
        _aboutMonitor = xcb_dpms_info(_connection).sequence;
        std::free(answer);
    }
    xcb_flush(_connection);
    update();
}

/// False while the answer is on its way: this never waits for the server, which may be held up. Null where there was no
/// question, or the answer is an error.
bool X11Visibility::takeAnswer(unsigned int question, void*& answer) {
    answer = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (question != 0 && xcb_poll_for_reply(_connection, question, &answer, &error) == 0) {
        return false;
    }
    std::free(error);
    return true;
}

void X11Visibility::update() {
    const bool isVisible = !_isCovered && !_isWithinHidden && !_monitorIsOff;
    if (std::exchange(_isVisible, isVisible) != isVisible) {
        _handler(isVisible);
    }
}

}  // namespace platform
