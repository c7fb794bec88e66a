#pragma once

#include <QtWidgets/QScrollArea>

namespace platform {

/// As large as what is in it wishes, as long as there is room; with less, that is scrolled. Main thread.
class ScrollView final : public QScrollArea {
    Q_OBJECT

public:
    explicit ScrollView(QWidget* parent);

    QSize sizeHint() const override;
    /// As wide as the contents must be, with room for the bar, so that only their height is ever scrolled.
    QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
};

}  // namespace platform
