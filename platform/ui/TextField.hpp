#pragma once

#include "platform/Geometry.hpp"
#include "platform/ui/Font.hpp"

#include <QtGui/QColor>
#include <QtWidgets/QWidget>
#include <string>

namespace platform {

/// One line of text that nobody can edit, on a background that may be translucent, without a border. It lets all input
/// through to what is below it. Main thread; owned by its parent.
class TextField final : public QWidget {
public:
    explicit TextField(QWidget* parent);

    /// Its place in its parent, in points with the origin at the parent's bottom left.
    const Rect& frame() const { return _frame; }
    void setFrame(const Rect& frame);
    /// Moves to its place again after the parent has changed its size.
    void followParent();

    const std::string& stringValue() const { return _stringValue; }
    void setStringValue(std::string value);
    const Font& textFont() const { return _font; }
    void setTextFont(Font font) { _font = std::move(font); }
    const QColor& textColor() const { return _textColor; }
    void setTextColor(const QColor& color) { _textColor = color; }
    const QColor& backgroundColor() const { return _backgroundColor; }
    void setBackgroundColor(const QColor& color) { _backgroundColor = color; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Rect _frame;
    std::string _stringValue;
    Font _font;
    QColor _textColor = Qt::black;
    QColor _backgroundColor = Qt::white;
};

}  // namespace platform
