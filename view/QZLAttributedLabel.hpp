#pragma once

#include "platform/Geometry.hpp"
#include "platform/ui/AttributedString.hpp"

#include <QtGui/QColor>
#include <QtWidgets/QWidget>

/// A text in several fonts on a plain ground. Main thread; owned by its parent.
class QZLAttributedLabel : public QWidget {
public:
    /// `frame` is its place in its parent, in points with the origin at the parent's bottom left.
    QZLAttributedLabel(QWidget* parent, const platform::Rect& frame);

    const platform::Rect& frame() const { return _frame; }
    const platform::AttributedString& text() const { return _text; }
    const platform::Rect& bound() const { return _bound; }
    unsigned options() const { return _options; }
    /// The text, the rectangle that it is drawn in (the origin as for the frame, but in the label itself), and how it
    /// is laid out. Does not ask for a redraw.
    void setText(platform::AttributedString text, const platform::Rect& bound, unsigned options);

    const QColor& backgroundColor() const { return _backgroundColor; }
    void setBackgroundColor(const QColor& color);
    /// True when nothing below shows through.
    bool isOpaque() const { return _backgroundColor.alphaF() == 1.0F; }

    /// Draws the part of the label. Called in paint events.
    void drawRect(const QRect& dirtyRect);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    platform::Rect _frame;
    platform::AttributedString _text;
    platform::Rect _bound;
    unsigned _options = 0;
    QColor _backgroundColor = Qt::transparent;
};
