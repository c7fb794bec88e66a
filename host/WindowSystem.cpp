#include "host/WindowSystem.hpp"

#include "platform/SystemLog.hpp"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QtCore/QtGlobal>
#include <QtWidgets/QApplication>
#include <atomic>
#include <cstring>
#include <utility>

namespace host {
namespace {

// Qt ends the process when it cannot open the display, so it is asked only when that will go well, or with a platform
// behind the wanted one that always works.

bool canOpenX11Display() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool opened = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return opened;
}

bool canConnectToSocket(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        return false;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool connected =
        descriptor >= 0 && connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    if (descriptor >= 0) {
        close(descriptor);
    }
    return connected;
}

bool canOpenWaylandDisplay() {
    const std::string name = qgetenv("WAYLAND_DISPLAY").toStdString();
    if (name.empty()) {
        return false;
    }
    return canConnectToSocket(name.starts_with('/') ? name : qgetenv("XDG_RUNTIME_DIR").toStdString() + "/" + name);
}

/// The name of Qt's platform for a desktop; else why there is none.
std::pair<std::string, std::string> choosePlatform(WindowSystem::Kind kind) {
    if (kind == WindowSystem::Kind::None) {
        return {"offscreen", ""};
    }
    if (kind == WindowSystem::Kind::Desktop) {
        const std::string wish = qgetenv("QT_QPA_PLATFORM").toStdString();
        if (!wish.empty() && !wish.starts_with("xcb") && !wish.starts_with("wayland")) {
            return {wish, ""};
        }
        if (!wish.starts_with("xcb") && canOpenWaylandDisplay()) {
            return {"wayland;xcb;offscreen", ""};
        }
    }
    if (!qEnvironmentVariableIsSet("DISPLAY")) {
        return {"", kind == WindowSystem::Kind::Desktop
                        ? "there is no display to open a window on (neither DISPLAY nor WAYLAND_DISPLAY names one); "
                          "--headless works without one"
                        : "there is no X11 display to draw on (DISPLAY is not set)"};
    }
    if (!canOpenX11Display()) {
        return {"", "the X11 display " + qEnvironmentVariable("DISPLAY").toStdString() + " cannot be opened"};
    }
    return {"xcb", ""};
}

void takeOutScaling() {
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    for (const char* name : {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_USE_PHYSICAL_DPI", "QT_FONT_DPI"}) {
        qunsetenv(name);
    }
}

std::atomic<bool> drawsInWindowsOfOthers = false;

/// Hosts that start savers in a poor environment do so on purpose, and destroy the windows that these draw in when they
/// like.
bool isExpected(const QMessageLogContext& context, const QString& message) {
    return message.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set")) ||
           (drawsInWindowsOfOthers && qstrcmp(context.category, "qt.qpa.xcb") == 0);
}

void passOn(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type != QtDebugMsg && type != QtInfoMsg && !isExpected(context, message)) {
        platform::systemLog("cirrane: " + message.toStdString());
    }
}

// QApplication keeps references to these for as long as it lives.
char programName[] = "cirrane";
char* programArguments[] = {programName, nullptr};
int programArgumentCount = 1;

}  // namespace

WindowSystem::WindowSystem(Kind kind) {
    auto [platform, reason] = choosePlatform(kind);
    if (platform.empty()) {
        _failure = std::move(reason);
        return;
    }
    drawsInWindowsOfOthers = kind == Kind::X11Pixels;
    qInstallMessageHandler(passOn);
    const bool hadWish = qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
    const QByteArray wish = qgetenv("QT_QPA_PLATFORM");
    qputenv("QT_QPA_PLATFORM", QByteArray::fromStdString(platform));
    if (kind != Kind::Desktop) {
        takeOutScaling();
    }
    // A session that ends asks its programs whether they mind, and starts them again with the next one.
    qunsetenv("SESSION_MANAGER");
    _application = std::make_unique<QApplication>(programArgumentCount, programArguments);
    // What was chosen here is not for the programs that this one starts.
    hadWish ? qputenv("QT_QPA_PLATFORM", wish) : qunsetenv("QT_QPA_PLATFORM");
    if (kind == Kind::Desktop && platform.ends_with(";offscreen") &&
        QApplication::platformName() == QLatin1String("offscreen")) {
        _failure = "Qt's platform for Wayland is not installed (Debian's package is qt6-wayland)";
    }
    QApplication::setApplicationName(QStringLiteral("cirrane"));
    QApplication::setApplicationDisplayName(QStringLiteral("Cirrane"));
    QApplication::setDesktopFileName(QStringLiteral("cirrane"));
}

WindowSystem::~WindowSystem() = default;

}  // namespace host
