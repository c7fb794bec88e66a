// Preloaded into the program: its toolkit names no screen, as for a moment when the last one is pulled out, and so
// there is no display to make a display link for.
#include <QtGui/QGuiApplication>

QList<QScreen*> QGuiApplication::screens() {
    return {};
}
