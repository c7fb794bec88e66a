#include "settings/QZLHotLink.hpp"

#include <QtGui/QCursor>
#include <QtGui/QFont>

QZLHotLink::QZLHotLink(QWidget* parent) : QZLTextTrigger(parent) {
    setCursor(Qt::PointingHandCursor);
    setForegroundRole(QPalette::Link);
}

void QZLHotLink::awakeFromNib() {
    setStringValue(stringValue());
}

void QZLHotLink::setStringValue(const std::string& value) {
    setTextFormat(Qt::PlainText);
    setText(QString::fromStdString(value));
    setFocusPolicy(value.empty() ? Qt::NoFocus : Qt::TabFocus);  // nobody shall come to what cannot be seen
    QFont underlined = font();
    underlined.setUnderline(true);
    setFont(underlined);
}
