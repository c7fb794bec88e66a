#include "host/QtTexts.hpp"

#include <QtCore/QCoreApplication>
#include <QtCore/QLibraryInfo>
#include <QtCore/QLocale>

namespace host {

QtTexts::QtTexts() {
    const QString directory = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    if (_translator.load(QLocale::system(), QStringLiteral("qtbase"), QStringLiteral("_"), directory)) {
        QCoreApplication::installTranslator(&_translator);
    }
}

}  // namespace host
