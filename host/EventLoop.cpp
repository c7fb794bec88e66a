#include "host/EventLoop.hpp"

#include <QtCore/QSocketNotifier>
#include <QtWidgets/QApplication>

namespace host {

void runEventLoop(const TerminationSignals& signals) {
    QSocketNotifier notifier(signals.fileDescriptor(), QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, qApp, [] { QApplication::exit(0); });
    QApplication::exec();
}

}  // namespace host
