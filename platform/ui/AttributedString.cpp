#include "platform/ui/AttributedString.hpp"

#include <QtGui/QFont>
#include <QtGui/QPainter>
#include <QtGui/QTextLayout>
#include <algorithm>
#include <cmath>

namespace platform {
namespace {

/// Fonts come in whole pixels only, so a text is laid out this much larger than it is drawn, to make sizes of
/// fractional points what they are.
constexpr double layoutScale = 16.0;

QFont layoutFont(const Font& font) {
    QFont large(QString::fromStdString(font.family));
    large.setPixelSize(std::max(1, static_cast<int>(std::lround(font.size * layoutScale))));
    large.setBold(font.isBold);
    large.setHintingPreference(QFont::PreferNoHinting);
    return large;
}

QTextCharFormat layoutFormat(const TextAttributes& attributes) {
    QTextCharFormat format;
    format.setFont(layoutFont(attributes.font));
    format.setForeground(attributes.foreground);
    format.setBackground(attributes.background);
    return format;
}

/// The lines of a text at a width, with what it takes to draw them. Lengths are `layoutScale` times points.
class Lines {
public:
    Lines(const AttributedString& string, double width, unsigned options) {
        QString text;
        QList<QTextLayout::FormatRange> formats;
        for (const AttributedString::Part& part : string.parts()) {
            QString added = QString::fromStdString(part.text);
            added.replace(QLatin1Char('\n'), QChar::LineSeparator);
            formats.push_back(
                {static_cast<int>(text.size()), static_cast<int>(added.size()), layoutFormat(part.attributes)});
            text += added;
        }
        _layout.setText(text);
        _layout.setFormats(formats);
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        _layout.setTextOption(option);
        layOut(width * layoutScale, options);
    }

    QSizeF size() const { return _size; }

    void draw(QPainter& painter) const { _layout.draw(&painter, QPointF(0.0, 0.0)); }

private:
    void layOut(double width, unsigned options) {
        const bool allLines = (options & stringDrawingUsesLineFragmentOrigin) != 0;
        _layout.beginLayout();
        for (QTextLine line = _layout.createLine(); line.isValid(); line = _layout.createLine()) {
            line.setLeadingIncluded((options & stringDrawingUsesFontLeading) != 0);
            line.setLineWidth(width);
            line.setPosition(QPointF(0.0, _size.height()));
            _size = QSizeF(std::max(_size.width(), line.naturalTextWidth()), _size.height() + line.height());
            if (!allLines) {
                break;
            }
        }
        _layout.endLayout();
    }

    QTextLayout _layout;
    QSizeF _size{0.0, 0.0};
};

}  // namespace

QSizeF AttributedString::boundingSize(double width, unsigned options) const {
    return isEmpty() ? QSizeF(0.0, 0.0) : Lines(*this, width, options).size() / layoutScale;
}

void AttributedString::drawWithRect(QPainter& painter, const QRectF& rect, unsigned options) const {
    if (isEmpty()) {
        return;
    }
    painter.save();
    painter.translate(rect.topLeft());
    painter.scale(1.0 / layoutScale, 1.0 / layoutScale);
    Lines(*this, rect.width(), options).draw(painter);
    painter.restore();
}

}  // namespace platform
