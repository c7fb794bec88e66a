#include "host/SingleInstance.hpp"

#include "platform/Paths.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <QtCore/QDir>
#include <QtCore/QLockFile>
#include <QtGui/QGuiApplication>

namespace host {
namespace {

constexpr int connectMilliseconds = 500;
constexpr int answerMilliseconds = 3000;
constexpr int longestToken = 1000;
constexpr const char* tokenVariable = "XDG_ACTIVATION_TOKEN";

bool isOurs(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && status.st_uid == geteuid();
}

/// As a part of a file's name. A screen of a display is the same display.
QString displayName() {
    const bool isWayland = QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
    QString name = qEnvironmentVariable(isWayland ? "WAYLAND_DISPLAY" : "DISPLAY");
    if (const qsizetype colon = name.lastIndexOf(QLatin1Char(':')); !isWayland && colon >= 0) {
        const qsizetype point = name.indexOf(QLatin1Char('.'), colon);
        name = point >= 0 ? name.left(point) : name;
    }
    return name.replace(QLatin1Char('/'), QLatin1Char('_'));
}

}  // namespace

std::string SingleInstance::addressOnThisDisplay() {
    QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!QDir::isAbsolutePath(folder) || !isOurs(folder.toStdString())) {
        folder = QString::fromStdString((platform::cacheDirectory() / "cirrane").string());
        if (!QDir().mkpath(folder) || !isOurs(folder.toStdString())) {
            return {};
        }
    }
    return (folder + QLatin1String("/cirrane-configure-") + displayName()).toStdString();
}

SingleInstance::Role SingleInstance::begin() {
    if (_address.empty()) {
        return Role::First;
    }
    const QString address = QString::fromStdString(_address);
    QLockFile lock(address + QLatin1String(".lock"));  // two that start at once would take each other's place
    lock.tryLock(answerMilliseconds);
    if (tellFirst()) {
        return Role::Later;
    }
    QLocalServer::removeServer(address);  // of one that died
    _server.setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(&_server, &QLocalServer::newConnection, &_server, [this] {
        while (QLocalSocket* const later = _server.nextPendingConnection()) {
            QObject::connect(later, &QLocalSocket::disconnected, later, &QObject::deleteLater);
            QObject::connect(later, &QLocalSocket::readyRead, later, [this, later] { answer(*later); });
        }
    });
    _server.listen(address);
    return Role::First;
}

/// The leave to come to the front, which Wayland's desktops give to who was started, is passed on.
bool SingleInstance::tellFirst() const {
    if (!isOurs(_address)) {
        return false;
    }
    QLocalSocket socket;
    socket.connectToServer(QString::fromStdString(_address));
    if (!socket.waitForConnected(connectMilliseconds)) {
        return false;
    }
    socket.write(qgetenv(tokenVariable).left(longestToken) + '\n');
    return socket.waitForReadyRead(answerMilliseconds);
}

void SingleInstance::answer(QLocalSocket& later) {
    if (!later.canReadLine()) {
        if (later.bytesAvailable() > longestToken) {
            later.abort();
        }
        return;
    }
    if (const QByteArray token = later.readLine().trimmed(); !token.isEmpty()) {
        qputenv(tokenVariable, token);
    }
    if (_laterCame) {
        _laterCame();
    }
    later.write("\n");
    later.disconnectFromServer();
}

}  // namespace host
