#include "host/FullscreenTest.hpp"

#include <QtCore/QStringList>

namespace host {

FullscreenTest::FullscreenTest(std::vector<std::string> command) : _command(std::move(command)) {
    _process.setStandardOutputFile(QProcess::nullDevice());
    QObject::connect(&_process, &QProcess::finished, &_process, [this] { end(); });
    QObject::connect(&_process, &QProcess::errorOccurred, &_process, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart && _ended) {
            _ended(_process.errorString().toStdString());
        }
    });
}

FullscreenTest::~FullscreenTest() {
    constexpr int patienceMilliseconds = 200;
    _ended = nullptr;
    _process.disconnect();
    if (_process.state() != QProcess::NotRunning) {
        _process.terminate();
        _process.waitForFinished(patienceMilliseconds);
    }
}

void FullscreenTest::start() {
    if (_process.state() == QProcess::NotRunning) {
        QStringList arguments;
        for (std::size_t i = 1; i < _command.size(); ++i) {
            arguments << QString::fromStdString(_command[i]);
        }
        _process.start(QString::fromStdString(_command.front()), arguments, QIODevice::ReadOnly);
    }
}

void FullscreenTest::end() {
    const bool wentWell = _process.exitStatus() == QProcess::NormalExit && _process.exitCode() == 0;
    if (_ended) {
        _ended(wentWell ? std::nullopt : std::optional(lastWords()));
    }
}

std::string FullscreenTest::lastWords() {
    constexpr qsizetype mostCharacters = 500;
    const QString words = QString::fromUtf8(_process.readAllStandardError()).trimmed();
    return words.right(mostCharacters).toStdString();
}

}  // namespace host
