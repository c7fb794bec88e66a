#include "platform/ui/ScrollView.hpp"

#include <QtCore/QEvent>
#include <QtWidgets/QScrollBar>

namespace platform {
namespace {

QSize leastSize(const QWidget& contents) {
    return contents.minimumSizeHint().expandedTo(contents.minimumSize());
}

}  // namespace

ScrollView::ScrollView(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);  // it follows the focus of what is in it
}

QSize ScrollView::sizeHint() const {
    return widget() != nullptr ? widget()->sizeHint().expandedTo(leastSize(*widget())) : QScrollArea::sizeHint();
}

QSize ScrollView::minimumSizeHint() const {
    const QSize least = QScrollArea::minimumSizeHint();
    const int bar = verticalScrollBar()->sizeHint().width();
    return widget() != nullptr ? QSize(leastSize(*widget()).width() + bar, least.height()) : least;
}

/// The base looks at its contents here.
bool ScrollView::eventFilter(QObject* object, QEvent* event) {
    if (object == widget() && event->type() == QEvent::LayoutRequest) {
        updateGeometry();
    }
    return QScrollArea::eventFilter(object, event);
}

}  // namespace platform
