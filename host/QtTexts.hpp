#pragma once

#include <QtCore/QTranslator>

namespace host {

/// While it lives, Qt speaks the desktop's language too, on the buttons of messages and in the menus of texts; English
/// where its catalogues are not installed. Main thread, with the application object made.
class QtTexts {
public:
    QtTexts();

private:
    QTranslator _translator;  // takes itself away
};

}  // namespace host
