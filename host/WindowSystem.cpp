#include "host/WindowSystem.hpp"

#include <xcb/xcb.h>

#include <QtCore/QtGlobal>
#include <QtWidgets/QApplication>

namespace host {
namespace {

/// Qt ends the process when it cannot open the display, so it is asked only when that will go well.
bool canOpenX11Display() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool opened = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return opened;
}

// QApplication keeps references to these for as long as it lives.
char programName[] = "cirrane";
char* programArguments[] = {programName, nullptr};
int programArgumentCount = 1;

}  // namespace

WindowSystem::WindowSystem() {
    if (!qEnvironmentVariableIsSet("DISPLAY")) {
        _failure = "there is no X11 display to open a window on (DISPLAY is not set); --headless works without one";
        return;
    }
    if (!canOpenX11Display()) {
        _failure = "the X11 display " + qEnvironmentVariable("DISPLAY").toStdString() + " cannot be opened";
        return;
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    _application = std::make_unique<QApplication>(programArgumentCount, programArguments);
    QApplication::setApplicationName(QStringLiteral("cirrane"));
    QApplication::setApplicationDisplayName(QStringLiteral("Cirrane"));
}

WindowSystem::~WindowSystem() = default;

}  // namespace host
